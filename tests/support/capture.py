"""Captures in the pcap format."""
import struct


USER0 = 147
IP = 228


def capture(packets, interval=0.0, link_type=USER0):
    """The bytes of a capture, its packets so many seconds apart."""
    result = struct.pack("<IHHiIII", 0xA1B23C4D, 2, 4, 0, 0, 262144, link_type)
    for number, packet in enumerate(packets):
        seconds, fraction = divmod(number * interval, 1)
        result += struct.pack("<IIII", int(seconds), round(fraction * 1e9), len(packet), len(packet)) + packet
    return result


def datagram(source, destination, data):
    """A packet of IP with one of UDP in it; addresses are their last bytes, ports and checksums of no interest."""
    header = struct.pack(">BBHHHBBH", 0x45, 0, 28 + len(data), 0, 0, 64, 17, 0)
    addresses = bytes([192, 0, 2, source, 192, 0, 2, destination])
    return header + addresses + struct.pack(">HHHH", 4711, 4711, 8 + len(data), 0) + data
