"""Generated scenes: pictures that look like camera footage, with the truth of every frame."""
