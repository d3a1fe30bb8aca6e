#!/usr/bin/env python3
"""Generates the FIX session logs in this folder.

Independent of the library on purpose: BodyLength and CheckSum are computed here with plain
Python, so the logs can check the library's scanner, parser and builder.

    python3 generate_sessions.py        # rewrites the .log files beside this script

Outputs (raw byte streams, messages back to back, SOH-delimited, as captured off a socket):
  session-fix44.log          a FIX 4.4 trading day: logon, heartbeats, test requests, orders,
                             executions (acks, partial and full fills), cancels, a session reject,
                             a business reject, logout, in both directions
  session-fix42.log          a shorter FIX 4.2 session
  session-fix44-damaged.log  the FIX 4.4 log with injected damage (see DAMAGE below)
"""
import random
from pathlib import Path

SOH = "\x01"
HERE = Path(__file__).resolve().parent


def encode(begin_string, msg_type, fields):
    """One complete message: 8, 9, 35 first, then the fields, then CheckSum."""
    body = f"35={msg_type}{SOH}" + "".join(f"{tag}={value}{SOH}" for tag, value in fields)
    head = f"8={begin_string}{SOH}9={len(body.encode())}{SOH}"
    checksum = sum((head + body).encode()) % 256
    return (head + body + f"10={checksum:03d}{SOH}").encode()


class Session:
    def __init__(self, begin_string, client, broker, rng, day="20261120"):
        self.begin_string = begin_string
        self.client, self.broker = client, broker
        self.seq = {client: 0, broker: 0}
        self.rng = rng
        self.day = day
        self.ms = (9 * 3600 + 29 * 60) * 1000  # 09:29:00.000
        self.messages = []

    def time(self):
        self.ms += self.rng.randint(1, 400)
        h, rest = divmod(self.ms, 3600000)
        m, rest = divmod(rest, 60000)
        s, ms = divmod(rest, 1000)
        return f"{self.day}-{h:02d}:{m:02d}:{s:02d}.{ms:03d}"

    def send(self, sender, msg_type, fields):
        target = self.broker if sender == self.client else self.client
        self.seq[sender] += 1
        header = [(49, sender), (56, target), (34, self.seq[sender]), (52, self.time())]
        self.messages.append(encode(self.begin_string, msg_type, header + fields))


SYMBOLS = [("AAPL", 187.25), ("MSFT", 415.10), ("IBM", 171.00), ("ESZ6", 5890.75), ("BRK.B", 412.33),
           ("NVDA", 131.42), ("TSLA", 251.90), ("JPM", 209.05)]


def trading_day(session, orders):
    rng = session.rng
    c, b = session.client, session.broker
    session.send(c, "A", [(98, 0), (108, 30), (141, "Y")])
    session.send(b, "A", [(98, 0), (108, 30)])
    open_orders = []
    next_exec = 1
    for n in range(1, orders + 1):
        symbol, mid = rng.choice(SYMBOLS)
        side = rng.choice("12")
        qty = rng.choice([100, 200, 300, 500, 1000, 2500, 10000])
        price = round(mid * (1 + rng.uniform(-0.01, 0.01)), 2)
        cl_ord_id = f"ORD{n:06d}"
        order_id = f"BRK{n:07d}"
        session.send(c, "D", [(11, cl_ord_id), (21, 1), (55, symbol), (54, side), (60, session.time()),
                              (38, qty), (40, 2), (44, f"{price:.2f}"), (59, 0)])
        session.send(b, "8", [(37, order_id), (11, cl_ord_id), (17, f"EX{next_exec:08d}"), (150, 0), (39, 0),
                              (55, symbol), (54, side), (38, qty), (44, f"{price:.2f}"), (151, qty), (14, 0),
                              (6, 0)])
        next_exec += 1
        open_orders.append((cl_ord_id, order_id, symbol, side, qty, price))
        # Fill, cancel or leave some open orders.
        while open_orders and rng.random() < 0.6:
            cl, oid, sym, sd, q, px = open_orders.pop(rng.randrange(len(open_orders)))
            if rng.random() < 0.75:
                done = 0
                while done < q:
                    part = q - done if rng.random() < 0.5 else max(1, (q - done) // rng.randint(2, 4))
                    done += part
                    status = 2 if done == q else 1
                    session.send(b, "8", [(37, oid), (11, cl), (17, f"EX{next_exec:08d}"), (150, "F"),
                                          (39, status), (55, sym), (54, sd), (38, q), (44, f"{px:.2f}"),
                                          (32, part), (31, f"{px:.2f}"), (151, q - done), (14, done),
                                          (6, f"{px:.2f}")])
                    next_exec += 1
            else:
                cancel_id = cl.replace("ORD", "CXL")
                session.send(c, "F", [(41, cl), (11, cancel_id), (55, sym), (54, sd), (60, session.time()),
                                      (38, q)])
                session.send(b, "8", [(37, oid), (11, cancel_id), (41, cl), (17, f"EX{next_exec:08d}"),
                                      (150, 4), (39, 4), (55, sym), (54, sd), (38, q), (151, 0), (14, 0),
                                      (6, 0)])
                next_exec += 1
        if n % 25 == 0:
            session.send(c, "0", [])
            session.send(b, "0", [])
        if n % 180 == 0:
            session.send(b, "1", [(112, f"TEST{n}")])
            session.send(c, "0", [(112, f"TEST{n}")])
        if n == orders // 2:
            # An order the broker rejects at session level (missing OrdType), then a business reject.
            session.send(c, "D", [(11, "ORDBAD1"), (21, 1), (55, "AAPL"), (54, 1), (60, session.time()),
                                  (38, 100)])
            session.send(b, "3", [(45, session.seq[c]), (371, 40), (372, "D"), (373, 1),
                                  (58, "Required tag missing")])
            session.send(c, "D", [(11, "ORDBAD2"), (21, 1), (55, "ZZZZ"), (54, 1), (60, session.time()),
                                  (38, 100), (40, 1)])
            session.send(b, "j", [(45, session.seq[c]), (372, "D"), (379, "ORDBAD2"), (380, 2),
                                  (58, "Unknown security")])
    session.send(c, "5", [(58, "End of day")])
    session.send(b, "5", [])


# Damage injected into the FIX 4.4 copy: (message index, kind). Kinds:
#   checksum   the CheckSum digits are changed (the message still scans complete)
#   garbage    junk bytes are put in front of the message (skipped while resynchronising)
#   truncate   the message is cut in the middle of its body (the next "8=" starts the next one)
#   bodylength the BodyLength value is made too long
DAMAGE = [(40, "checksum"), (97, "garbage"), (150, "truncate"), (233, "bodylength"), (512, "checksum"),
          (1024, "garbage"), (1500, "truncate")]


def damage(messages):
    out = []
    for index, message in enumerate(messages):
        kinds = [kind for at, kind in DAMAGE if at == index]
        for kind in kinds:
            if kind == "checksum":
                digits = message[-4:-1]
                wrong = f"{(int(digits) + 1) % 256:03d}".encode()
                message = message[:-4] + wrong + message[-1:]
            elif kind == "garbage":
                message = b"\r\nGARBAGE 9=12\x01" + message
            elif kind == "truncate":
                message = message[: len(message) // 2]
            elif kind == "bodylength":
                start = message.index(b"\x019=") + 3
                end = message.index(b"\x01", start)
                message = message[:start] + str(int(message[start:end]) + 7).encode() + message[end:]
        out.append(message)
    return out


def main():
    rng = random.Random(20261121)
    fix44 = Session("FIX.4.4", "VELORA", "BROKER1", rng)
    trading_day(fix44, 900)
    fix42 = Session("FIX.4.2", "VELORA", "BROKER2", rng)
    trading_day(fix42, 150)
    (HERE / "session-fix44.log").write_bytes(b"".join(fix44.messages))
    (HERE / "session-fix42.log").write_bytes(b"".join(fix42.messages))
    (HERE / "session-fix44-damaged.log").write_bytes(b"".join(damage(fix44.messages)))
    print(f"session-fix44.log: {len(fix44.messages)} messages; session-fix42.log: {len(fix42.messages)}")


if __name__ == "__main__":
    main()
