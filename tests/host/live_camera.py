#!/usr/bin/python3
"""A simulated camera on the loopback interface.

    live_camera.py FILE     H.264 with an access unit delimiter before each picture, or JPEG pictures

It prints its port number and then answers each command line on standard input with one line:

    listen    accepts connections, as at the start
    play      waits until a client connects and requests pictures
    send N    sends the next N pictures, starting over after the last
    seek N    continues with picture N
    die       closes the connection and accepts no more

RTSP clients receive the pictures inside the RTSP connection; HTTP clients receive H.264 as an MPEG transport stream, or
JPEG pictures one after another.
"""

import base64
import re
import socket
import struct
import sys

LONGEST_PAYLOAD = 1400
TICKS = 3600  # of 90 kHz between two pictures: 25 per second
DELIMITER, SEQUENCE_SET, PICTURE_SET = 9, 7, 8
START_CODE = b"\x00\x00\x00\x01"
START_OF_JPEG = b"\xff\xd8\xff"


def read_pictures(path):
    """The units of each picture, without start codes; a JPEG picture is one unit."""
    with open(path, "rb") as file:
        content = file.read()
    if content.startswith(START_OF_JPEG):
        return [[START_OF_JPEG + rest] for rest in content.split(START_OF_JPEG)[1:]]
    units = re.split(b"\x00\x00\x00?\x01", content)[1:]
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
    """A whole unit, or fragments that each start with a two-byte header."""
    if len(unit) <= LONGEST_PAYLOAD:
        return [unit]
    pieces = [unit[i:i + LONGEST_PAYLOAD] for i in range(1, len(unit), LONGEST_PAYLOAD)]
    marks = [0x80] + [0] * (len(pieces) - 2) + [0x40]
    return [bytes([unit[0] & 0xE0 | 28, mark | unit[0] & 31]) + piece for mark, piece in zip(marks, pieces)]


class Player:
    """A connected client."""

    def __init__(self, connection):
        self.connection = connection

    def close(self):
        self.connection.shutdown(socket.SHUT_RDWR)
        self.connection.close()


class RtspPlayer(Player):
    def __init__(self, connection, request, requests, sdp):
        super().__init__(connection)
        self.sequence = 0
        while not self.answer(request, requests, sdp):
            request = requests.readline()

    def answer(self, request, requests, sdp):
        """True if this was the request for pictures."""
        method = request.split(b" ")[0].decode()
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
        return method == "PLAY"

    def send(self, picture, number):
        parts = [part for unit in picture for part in payloads(unit)]
        for i, part in enumerate(parts):
            last = 0x80 if i + 1 == len(parts) else 0
            header = struct.pack(">BBHII", 0x80, last | 96, self.sequence & 0xFFFF, number * TICKS, 1)
            self.sequence += 1
            self.connection.sendall(struct.pack(">cBH", b"$", 0, len(header) + len(part)) + header + part)


class HttpPlayer(Player):
    def __init__(self, connection, requests, kind):
        super().__init__(connection)
        for _ in iter(requests.readline, b"\r\n"):
            pass
        connection.sendall(f"HTTP/1.0 200 OK\r\nContent-Type: {kind}\r\n\r\n".encode())


class JpegPlayer(HttpPlayer):
    def __init__(self, connection, requests):
        super().__init__(connection, requests, "multipart/x-mixed-replace; boundary=picture")

    def send(self, picture, _):
        header = f"--picture\r\nContent-Type: image/jpeg\r\nContent-Length: {len(picture[0])}\r\n\r\n"
        self.connection.sendall(header.encode() + picture[0] + b"\r\n")


class TransportStreamPlayer(HttpPlayer):
    PROGRAMS, PROGRAM, VIDEO = 0, 0x100, 0x101

    def __init__(self, connection, requests):
        super().__init__(connection, requests, "video/mp2t")
        self.counters = {}

    def send(self, picture, number):
        if picture[1][0] & 31 == SEQUENCE_SET:
            self.send_packets(self.PROGRAMS, table("00b00d0001c100000001e100"))
            self.send_packets(self.PROGRAM, table("02b0120001c10000e101f0001be101f000"))
        time = number * TICKS
        stamp = bytes([0x21 | time >> 29 & 0x0E, time >> 22 & 0xFF, 1 | time >> 14 & 0xFE, time >> 7 & 0xFF,
                       1 | time << 1 & 0xFE])
        units = b"".join(START_CODE + unit for unit in picture)
        self.send_packets(self.VIDEO, bytes.fromhex("000001e00000808005") + stamp + units)

    def send_packets(self, stream, payload):
        """Packets of 188 bytes with a 4-byte header; in the last one, stuffing follows the header."""
        for start in range(0, len(payload), 184):
            piece = payload[start:start + 184]
            counter = self.counters.get(stream, 0)
            self.counters[stream] = counter + 1 & 15
            missing = 184 - len(piece)
            filling = (bytes([max(missing - 1, 0), 0]) + b"\xff" * 184)[:missing]
            first, filled = 0x40 if start == 0 else 0, 0x20 if missing else 0
            self.connection.sendall(bytes([0x47, first | stream >> 8, stream & 0xFF, 0x10 | filled | counter]) +
                                    filling + piece)


def table(text):
    """A table with its checksum as the payload of a packet: a pointer to its start, then only the table."""
    body = bytes.fromhex(text)
    checksum = 0xFFFFFFFF
    for byte in body:
        checksum ^= byte << 24
        for _ in range(8):
            checksum = (checksum << 1 ^ (0x04C11DB7 if checksum & 0x80000000 else 0)) & 0xFFFFFFFF
    return (b"\0" + body + struct.pack(">I", checksum)).ljust(184, b"\xff")


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
        connection = self.listener.accept()[0]
        requests = connection.makefile("rb")
        request = requests.readline()
        if not request.startswith(b"GET "):
            self.player = RtspPlayer(connection, request, requests, description(self.pictures))
        elif self.pictures[0][0].startswith(START_OF_JPEG):
            self.player = JpegPlayer(connection, requests)
        else:
            self.player = TransportStreamPlayer(connection, requests)

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
