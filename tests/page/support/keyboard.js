// Presses keys in a window. Names are those of `KeyboardEvent.key`, after modifiers: "Control+Shift+z".
const modifiers = { Alt: 1, Control: 2, Meta: 4, Shift: 8 };
const codes = { Enter: 13, Escape: 27, PageDown: 34, End: 35, ArrowLeft: 37, ArrowUp: 38, ArrowRight: 39, ArrowDown: 40, Delete: 46 };

export function keyboardOf(command) {
  return {
    async press(name) {
      const words = name.split("+");
      let key = words.pop();
      const held = words.reduce((bits, word) => bits | modifiers[word], 0);
      const isLetter = key.length === 1;
      if (isLetter && held & modifiers.Shift) key = key.toUpperCase();
      const about = {
        key,
        code: isLetter ? `Key${key.toUpperCase()}` : key,
        windowsVirtualKeyCode: codes[key] ?? key.toUpperCase().charCodeAt(0),
        modifiers: held,
      };
      const plain = !(held & ~modifiers.Shift);
      const text = key === "Enter" ? "\r" : isLetter && plain ? key : undefined;
      await command("Input.dispatchKeyEvent", { type: text ? "keyDown" : "rawKeyDown", text, ...about });
      await command("Input.dispatchKeyEvent", { type: "keyUp", ...about });
    },
  };
}
