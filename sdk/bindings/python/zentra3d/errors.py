"""What goes wrong, besides wrong arguments: those raise TypeError or ValueError."""


class OutOfMemory(MemoryError):
    """The library could not get the memory for a volume or a picture."""


class Cancelled(Exception):
    """Loading was stopped: progress returned False."""
