"""The navigation runtime for Python, by ctypes over the C library: see zuno.h for what each call
does and costs. Failures are raised as `Error`; what is not there is None. Objects free what they
hold when they are closed, left (`with`), or collected.

The library is found by the name in ZUNO_LIBRARY, else where the system looks."""
import ctypes
import os
import sys
from ctypes import POINTER, Structure, byref, c_char_p, c_double, c_float, c_int32, c_uint32, c_uint64, c_void_p

_names = {"win32": "zunoc.dll", "darwin": "libzunoc.dylib"}
_library = ctypes.CDLL(os.environ.get("ZUNO_LIBRARY", _names.get(sys.platform, "libzunoc.so.1")))
VERSION = 10000
FOUND, RUNNING, NO_PATH, OFF_MESH = range(4)
URGENT, NORMAL, BACKGROUND = range(3)
PLAIN, IMPROVED = range(2)
FOREVER = 2**64 - 1


class Point(Structure):
    _fields_ = [("x", c_float), ("y", c_float), ("z", c_float)]


class Point2(Structure):
    _fields_ = [("x", c_float), ("y", c_float)]


class Place(Structure):
    _fields_ = [("node", c_uint32), ("position", Point)]


class _Sized(Structure):
    """A struct that knows its size."""
    def __init__(self, *arguments):
        super().__init__(ctypes.sizeof(self), *arguments)


class _Parameter(Structure):
    _fields_ = [("name", c_char_p), ("value", c_char_p)]


class _Error(_Sized):
    _fields_ = [("size", c_uint32), ("status", c_int32), ("text", c_char_p), ("type", c_char_p),
                ("parameters", POINTER(_Parameter)), ("parameter_count", c_uint32)]


class _Settings(_Sized):
    _fields_ = [("size", c_uint32), ("base_folder", c_char_p), ("recording", c_char_p),
                ("memory", c_void_p), ("files", c_void_p)]


class Memory(_Sized):
    _fields_ = [("size", c_uint32), ("is_recording", c_int32)] + [
        (name, c_uint64) for name in "allocations frees blocks bytes peak_bytes".split()]


class Request(_Sized):
    _fields_ = [("size", c_uint32), ("priority", c_int32), ("start", Point), ("goal", Point),
                ("deadline", c_uint32)]


class Answer(_Sized):
    _fields_ = [("size", c_uint32), ("result", c_int32), ("start", Point), ("goal", Point),
                ("cost", c_float), ("frames_waited", c_uint32), ("expansions", c_uint64),
                ("is_late", c_int32), ("waypoint_count", c_uint32)]


class CorridorState(_Sized):
    _fields_ = [("size", c_uint32), ("position", Place), ("goal", Place), ("has_path", c_int32),
                ("needs_search", c_int32)]


class Error(Exception):
    """A failure: its status, the exception's class in the library, and named parameters."""
    def __init__(self, error):
        super().__init__(error.text.decode(errors="replace"))
        self.status, self.type = error.status, error.type.decode()
        self.parameters = {p.name.decode(): p.value.decode(errors="replace")
                           for p in error.parameters[:error.parameter_count]}


def _call(name, *arguments):
    """Returns whether what was asked for is there."""
    status = getattr(_library, "zuno_" + name)(*arguments)
    if status < 0:
        error = _Error()
        _library.zuno_last_error(byref(error))
        raise Error(error)
    return status == 0


def _value(kind, name, *arguments):
    """Returns what the call gives in its last argument, or None."""
    value = kind()
    there = _call(name, *arguments, byref(value))
    return None if not there else value.value if hasattr(value, "value") else value


def _list(kind, call):
    """Returns an array, by the rule for arrays: `call` is asked for the number, then for all."""
    count = c_uint32()
    call(None, byref(count))
    items = (kind * count.value)()
    call(items, byref(count))
    return items


def _f(*numbers):
    return [c_float(number) for number in numbers]


_call("check_version", c_uint32(VERSION), None)


class _Object:
    """Holds a handle."""
    def __init__(self, name, *arguments):
        self._as_parameter_ = c_void_p(_value(c_void_p, name, *arguments))

    def close(self):
        handle, self._as_parameter_ = self.__dict__.get("_as_parameter_"), None
        if handle:
            _library.zuno_destroy(handle)

    def __del__(self):
        self.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


class Session(_Object):
    """A running world."""
    def __init__(self, mesh, base_folder=None, recording=None):
        texts = [os.fsencode(text) if text else None for text in (base_folder, recording)]
        super().__init__("start", byref(_Settings(*texts)), os.fsencode(mesh))

    def close(self):
        """Returns the memory figures after the close."""
        handle, self._as_parameter_ = self.__dict__.get("_as_parameter_"), None
        return _value(Memory, "close", handle) if handle else None

    def memory(self):
        return _value(Memory, "memory_figures", self)

    def bounds(self):
        low = Point2()
        return low, _value(Point2, "bounds", self, byref(low))

    def is_blocked(self, x, y):
        return _value(c_int32, "is_blocked", self, *_f(x, y)) == 1

    def ground_height(self, x, y):
        return _value(c_float, "ground_height", self, *_f(x, y))

    def trace_ray(self, from_x, from_y, to_x, to_y):
        return _value(c_float, "trace_ray", self, *_f(from_x, from_y, to_x, to_y))

    def search(self, start, goal):
        """Opens a search; None when a point stands on no node."""
        handle = _value(c_void_p, "search_open", self, byref(start), byref(goal))
        return Search(handle) if handle else None


class Search(_Object):
    def __init__(self, handle):
        self._as_parameter_ = c_void_p(handle)

    def run(self, budget):
        return _value(c_int32, "search_run", self, c_uint32(budget))

    def waypoints(self, most=4096):
        """Returns the next waypoints, at most so many."""
        points, count = (Point * most)(), c_uint32(most)
        _call("search_waypoints", self, points, byref(count))
        return points[:count.value]

    def cost(self):
        return _value(c_float, "search_cost", self)


class Scheduler(_Object):
    def __init__(self, session):
        super().__init__("scheduler_create", session, None)

    def add(self, start, goal, priority=NORMAL, deadline=0):
        return _value(c_uint64, "scheduler_add", self, byref(Request(priority, start, goal, deadline)))

    def cancel(self, request):
        _call("scheduler_cancel", self, c_uint64(request))

    def advance(self, expansions=FOREVER, nanoseconds=FOREVER):
        _call("scheduler_advance", self, c_uint64(expansions), c_uint64(nanoseconds))

    def take(self, request):
        """Returns an answer and its waypoints, or None while the request is open."""
        answer, count = Answer(), c_uint32()
        arguments = self, c_uint64(request), byref(answer)
        if not _call("scheduler_take", *arguments, None, byref(count)):
            return None
        points = (Point * count.value)()
        _call("scheduler_take", *arguments, points, byref(count))
        return answer, points


class Mesh(_Object):
    """The ground, without a world."""
    def __init__(self, name, session=None):
        super().__init__("mesh_load", session, os.fsencode(name))

    def outline(self, node):
        return _list(Point, lambda *array: _call("mesh_outline", self, c_uint32(node), *array))

    def ground(self, at, height=float("inf")):
        return _value(Place, "mesh_ground", self, byref(at), c_float(height))

    def nearest(self, at, radius, height):
        place = Place()
        there = _call("mesh_nearest", self, byref(at), *_f(radius, height), byref(place), None)
        return place if there else None

    def random(self, seed):
        return _value(Place, "mesh_random", self, c_uint64(seed))

    def move(self, place, target):
        return _value(Place, "mesh_move", self, byref(place), byref(target))

    def explain(self, start, goal):
        """Returns whole sentences on why there is, or isn't, a path."""
        answer, text, count = c_int32(), None, c_uint32()
        arguments = self, byref(start), byref(goal), byref(answer)
        text = _list(ctypes.c_char, lambda *array: _call("mesh_explain", *arguments, *array))
        return text.value.decode()


class Path(_Object):
    """A path from corner to corner."""
    def __init__(self, mesh):
        super().__init__("path_create", mesh)

    def straighten(self, start, goal, waypoints, form=IMPROVED):
        points = (Point * len(waypoints))(*waypoints)
        return _call("path_straighten", self, byref(start), byref(goal), points,
                     c_uint32(len(waypoints)), c_int32(form))

    def corners(self):
        return _list(Point, lambda *array: _call("path_corners", self, *array, None))

    def length(self):
        length, count = c_double(), c_uint32()
        _call("path_corners", self, None, byref(count), byref(length))
        return length.value


class Corridor(_Object):
    """A character that walks."""
    def __init__(self, mesh, place):
        super().__init__("corridor_create", mesh, byref(place))

    def follow(self, path):
        return _call("corridor_follow", self, path)

    def next(self, reached):
        return _value(Point, "corridor_next", self, c_float(reached))

    def move(self, target):
        _call("corridor_move", self, byref(target))

    def state(self):
        return _value(CorridorState, "corridor_look", self)
