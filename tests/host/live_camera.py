#!/ usr / bin / python3
"""A camera on the loopback that does as it is told.

    live_camera.py FILE     H.264 with an access unit delimiter before each picture

It prints the number of its port and then answers each line on standard input with a line:

    listen    takes connections from now on, as at the start
    play      waits until somebody connects and wants to see pictures
    send N    sends the next N pictures, from the first on again after the last
    seek N    goes on with picture N
    die       ends the connection and takes no more

Pictures go out by RTSP, inside its connection.
"""

import base64
import re
import socket
import struct
import sys

LONGEST_PAYLOAD = 1400
TICKS = 3600  # of 90 kHz between two pictures: 25 a second
DELIMITER, SEQUENCE_SET, PICTURE_SET = 9, 7, 8


def read_pictures(path):
    """The units of each picture, without their start codes."""
    with open(path, "rb") as file:
        units = re.split(b"\x00\x00\x00?\x01", file.read())[1:]
    pictures = []
    for unit in units:
        if unit[0] & 31 == DELIMITER:
            pictures.append([])
        pictures[-1].append(unit)
    return pictures


def description(pictures):
    sets = [u for u in pictures[0] if u[0] & 31 in (SEQUENCE_SET, PICTURE_SET)]
    texts = ",".join(base64.b64encode(u).decode() for u in sets)
    lines = ["v=0", "o=- 0 0 IN IP4 127.0.0.1", "s=camera", "t=0 0", "m=video 0 RTP/AVP 96",
             "c=IN IP4 0.0.0.0", "a=rtpmap:96 H264/90000",
             f"a=fmtp:96 packetization-mode=1;sprop-parameter-sets={texts}", "a=control:video"]
    return "\r\n".join(lines) + "\r\n"


def payloads(unit):
    """A unit whole, or in fragments that start with a two-byte header each."""
    if len(unit) <= LONGEST_PAYLOAD:
        return [unit]
    pieces = [unit[i:i + LONGEST_PAYLOAD] for i in range(1, len(unit), LONGEST_PAYLOAD)]
    marks = [0x80] + [0] * (len(pieces) - 2) + [0x40]
    return [bytes([unit[0] & 0xE0 | 28, mark | unit[0] & 31]) + piece for mark, piece in zip(marks, pieces)]


class Player:
    """Somebody who watches."""

    def __init__(self, connection, sdp):
        self.connection = connection
        self.sequence = 0
        self.greet(connection.makefile("rb"), sdp)

    def greet(self, requests, sdp):
        """Answers requests up to the one for pictures."""
        while True:
            method = requests.readline().split(b" ")[0].decode()
            fields = {}
            for line in iter(requests.readline, b"\r\n"):
                name, _, value = line.decode().partition(":")
                fields[name.lower()] = value.strip()
            extra, body = "", ""
            if method == "DESCRIBE":
                extra, body = "Content-Type: application/sdp\r\n", sdp
            elif method == "SETUP":
                extra = f"Transport: {fields['transport']}\r\n"
            self.connection.sendall((f"RTSP/1.0 200 OK\r\nCSeq: {fields['cseq']}\r\nSession: 1\r\n{extra}"
                                     f"Content-Length: {len(body)}\r\n\r\n{body}").encode())
            if method == "PLAY":
                return

    def send(self, picture, number):
        parts = [part for unit in picture for part in payloads(unit)]
        for i, part in enumerate(parts):
            last = 0x80 if i + 1 == len(parts) else 0
            header = struct.pack(">BBHII", 0x80, last | 96, self.sequence & 0xFFFF, number * TICKS, 1)
            self.sequence += 1
            self.connection.sendall(struct.pack(">cBH", b"$", 0, len(header) + len(part)) + header + part)

    def close(self):
        self.connection.shutdown(socket.SHUT_RDWR)
        self.connection.close()


class Camera:
    def __init__(self, pictures):
        self.pictures = pictures
        self.next = 0
        self.sent = 0
        self.port = 0
        self.player = None
        self.listen()

    def listen(self):
        self.listener = socket.create_server(("127.0.0.1", self.port))
        self.port = self.listener.getsockname()[1]

    def play(self):
        self.player = Player(self.listener.accept()[0], description(self.pictures))

    def send(self, count):
        for _ in range(int(count)):
            self.player.send(self.pictures[self.next], self.sent)
            self.next = (self.next + 1) % len(self.pictures)
            self.sent += 1

    def seek(self, number):
        self.next = int(number)

    def die(self):
        self.listener.close()
        try:
            self.player.close()
        except OSError:
            pass


def main():
    camera = Camera(read_pictures(sys.argv[1]))
    print(camera.port, flush=True)
    for line in sys.stdin:
        command, *arguments = line.split()
        try:
            getattr(camera, command)(*arguments)
            print("done", flush=True)
        except OSError as error:
            print("gone:", error, flush=True)


if __name__ == "__main__":
    main()
