"""What an LDIF file says, read by the plainest means: to check that the programs that are measured do their work."""
import base64


def key_of(dn):
    return ",".join(part.strip() for part in dn.decode().lower().split(","))


def content(data):
    """The pairs of attribute and value by DN. A DN that occurs twice has both entries' pairs."""
    entries = {}
    pairs = set()
    for line in data.replace(b"\n ", b"").split(b"\n"):
        if line.startswith(b"#"):
            continue
        name, separator, value = line.partition(b":")
        if not separator:
            pairs = set()  # a blank line ends an entry
            continue
        value = base64.b64decode(value[1:]) if value.startswith(b":") else value.lstrip(b" ")
        if name.lower() == b"dn":
            pairs = entries.setdefault(key_of(value), set())
        else:
            pairs.add((name.decode().lower(), value))
    return entries


def names(data):
    """The DNs that an output tells, whatever it says about them."""
    lines = data.replace(b"\n ", b"").split(b"\n")
    return {key_of(line[3:].strip()) for line in lines if line.lower().startswith(b"dn: ")}
