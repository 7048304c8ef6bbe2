"""Protocol buffers as lists of fields, without their descriptions; for the tools that read and write them."""


def number(data, at):
    """A variable-length number and the place behind it."""
    value = shift = 0
    while True:
        byte = data[at]
        at += 1
        value |= (byte & 127) << shift
        shift += 7
        if byte < 128:
            return value, at


def coded(value):
    out = bytearray()
    while value > 127:
        out.append(value & 127 | 128)
        value >>= 7
    out.append(value)
    return bytes(out)


def fields(data):
    """(number, kind, content) of each field; contents stay bytes, but for numbers."""
    at = 0
    while at < len(data):
        key, at = number(data, at)
        if key & 7 == 0:
            content, at = number(data, at)
        else:
            size, at = number(data, at) if key & 7 == 2 else ({1: 8, 5: 4}[key & 7], at)
            content, at = data[at:at + size], at + size
        yield key >> 3, key & 7, content


def message(parts):
    """The bytes of such a list."""
    out = bytearray()
    for field, kind, content in parts:
        out += coded(field << 3 | kind)
        if kind == 0:
            out += coded(content)
        else:
            out += (coded(len(content)) if kind == 2 else b"") + content
    return bytes(out)
