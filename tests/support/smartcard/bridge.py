"""Answers the test's winscard.dll with the smart-card service of this machine.

A line for each call and a line back: the result in hexadecimal digits, then what the call returns. The
bridge's log has the name and the result of each call, of a command to the card its header alone.
"""

import ctypes
import socketserver
import threading

NO_SERVICE = 0x8010001D
HEADER = 4  # bytes of a command that say what it does; what follows may hold a PIN


class ReaderState(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("user", ctypes.c_void_p),
                ("current", ctypes.c_ulong), ("event", ctypes.c_ulong),
                ("atr_length", ctypes.c_ulong), ("atr", ctypes.c_ubyte * 33)]


class Protocol(ctypes.Structure):
    _fields_ = [("protocol", ctypes.c_ulong), ("length", ctypes.c_ulong)]


def hexadecimal(data):
    return "-" + data.hex()


def from_hexadecimal(word):
    return bytes.fromhex(word[1:])


class Service:
    """The library's functions, as the calls of the protocol. Each returns its words."""

    def __init__(self):
        self.library = ctypes.CDLL("libpcsclite.so.1")
        self.callers = {}  # of each context
        self.looked = set()  # the callers that know what is in the readers

    def call(self, name, *arguments):
        return getattr(self.library, "SCard" + name)(*arguments) & 0xFFFFFFFF

    def establish_context(self, caller=""):
        context = ctypes.c_long()
        result = self.call("EstablishContext", ctypes.c_ulong(2), None, None,
                           ctypes.byref(context))
        self.callers[context.value] = caller
        return result, [context.value]

    def release_context(self, context):
        self.call("Cancel", ctypes.c_long(context))
        self.call("ReleaseContext", ctypes.c_long(context))

    def cancel(self, context):
        return self.call("Cancel", ctypes.c_long(int(context))), []

    def list_readers(self, context):
        length = ctypes.c_ulong(65536)
        names = ctypes.create_string_buffer(length.value)
        result = self.call("ListReaders", ctypes.c_long(int(context)), None, names,
                           ctypes.byref(length))
        return result, [hexadecimal(names.raw[:length.value])]

    def get_status_change(self, context, timeout, *pairs):
        states = (ReaderState * (len(pairs) // 2))()
        for state, name, current in zip(states, pairs[::2], pairs[1::2]):
            state.name = from_hexadecimal(name)
            state.current = int(current)
        result = self.call("GetStatusChange", ctypes.c_long(int(context)),
                           ctypes.c_ulong(int(timeout)), states, ctypes.c_ulong(len(states)))
        if result == 0:
            self.looked.add(self.callers.get(int(context)))
        return result, [state.event for state in states]

    def connect(self, context, reader, share, protocols):
        card, protocol = ctypes.c_long(), ctypes.c_ulong()
        result = self.call("Connect", ctypes.c_long(int(context)), from_hexadecimal(reader),
                           ctypes.c_ulong(int(share)), ctypes.c_ulong(int(protocols)),
                           ctypes.byref(card), ctypes.byref(protocol))
        return result, [card.value, protocol.value]

    def reconnect(self, card, share, protocols, initialization):
        protocol = ctypes.c_ulong()
        result = self.call("Reconnect", ctypes.c_long(int(card)), ctypes.c_ulong(int(share)),
                           ctypes.c_ulong(int(protocols)), ctypes.c_ulong(int(initialization)),
                           ctypes.byref(protocol))
        return result, [protocol.value]

    def disconnect(self, card, disposition):
        return self.call("Disconnect", ctypes.c_long(int(card)),
                         ctypes.c_ulong(int(disposition))), []

    def begin_transaction(self, card):
        return self.call("BeginTransaction", ctypes.c_long(int(card))), []

    def end_transaction(self, card, disposition):
        return self.call("EndTransaction", ctypes.c_long(int(card)),
                         ctypes.c_ulong(int(disposition))), []

    def transmit(self, card, protocol, command):
        sent = from_hexadecimal(command)
        header = Protocol(int(protocol), ctypes.sizeof(Protocol))
        answer = ctypes.create_string_buffer(65536)
        length = ctypes.c_ulong(len(answer))
        result = self.call("Transmit", ctypes.c_long(int(card)), ctypes.byref(header), sent,
                           ctypes.c_ulong(len(sent)), None, answer, ctypes.byref(length))
        return result, [hexadecimal(answer.raw[:length.value] if result == 0 else b"")]


CALLS = {"EstablishContext": Service.establish_context, "Cancel": Service.cancel,
         "ListReaders": Service.list_readers, "GetStatusChange": Service.get_status_change,
         "Connect": Service.connect, "Reconnect": Service.reconnect,
         "Disconnect": Service.disconnect, "BeginTransaction": Service.begin_transaction,
         "EndTransaction": Service.end_transaction, "Transmit": Service.transmit}


class Handler(socketserver.StreamRequestHandler):
    def handle(self):
        line = self.rfile.readline().decode("ascii").split()
        if not line:  # its program has ended before it asked
            return
        name, *words = line
        result, values = CALLS[name](self.server.service, *words)
        shown = words[-1][1:1 + 2 * HEADER] if name == "Transmit" else ""
        self.server.log.append(f"{name} {shown} {result:08X}")
        try:
            self.wfile.write(" ".join([f"{result:x}", *map(str, values), "\n"]).encode("ascii"))
            if name == "EstablishContext" and result == 0:
                self.rfile.read()  # until the context's program lets go of it, or ends
        except OSError:
            pass  # it has ended
        if name == "EstablishContext" and result == 0:
            self.server.service.release_context(values[0])


class Bridge(socketserver.ThreadingTCPServer):
    """Listens from the beginning; `log` is what it was asked."""

    daemon_threads = True
    request_queue_size = 64

    def __init__(self):
        super().__init__(("127.0.0.1", 0), Handler)
        self.service = Service()
        self.log = []
        threading.Thread(target=self.serve_forever, daemon=True).start()

    @property
    def port(self):
        return self.server_address[1]
