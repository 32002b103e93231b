"""How gdb shows the library's texts, pointers and containers. gdb loads this file by itself when a
program loads the installed library; else: source zunopathfinder-gdb.py"""
import gdb
import gdb.printing


def items(vector):
    """The elements of a std::vector."""
    part = vector["_M_impl"]
    first, end = part["_M_start"], part["_M_finish"]
    return [(first + i).dereference() for i in range(int(end - first))]


def indexed(values):
    return ((f"[{i}]", value) for i, value in enumerate(values))


class StringPrinter:
    """BasicString<char>: its characters without the zero."""

    def __init__(self, value):
        self.characters = value["mCharacters"]["_M_impl"]

    def to_string(self):
        start = self.characters["_M_start"]
        length = int(self.characters["_M_finish"] - start) - 1
        return start.string(length=length) if length > 0 else ""

    def display_hint(self):
        return "string"


class SharedPtrPrinter:
    """SharedPtr<T>: how many hold the object, where that is known, and the object."""

    def __init__(self, value):
        self.value = value

    def count(self):
        pointer = self.value["mPtr"]
        for read in (lambda: pointer.dereference()["mReferenceCount"],
                     lambda: self.value["mCounter"].dereference()):
            try:
                return f", {int(read())} holders"
            except (gdb.error, gdb.MemoryError):
                pass
        return ""

    def to_string(self):
        pointer = self.value["mPtr"]
        if int(pointer) == 0:
            return "null"
        return f"{pointer.dynamic_type.target()} at {int(pointer):#x}{self.count()}"

    def children(self):
        if int(self.value["mPtr"]) != 0:
            yield "object", self.value["mPtr"].dereference()


class VectorPrinter:
    """Vec2 and Vec3: the coordinates."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        names = [f.name for f in self.value.type.fields() if f.name in ("mX", "mY", "mZ")]
        return "(" + ", ".join(str(self.value[name]) for name in names) + ")"


class ArrayPrinter:
    """Array<T, N>."""

    def __init__(self, value):
        self.elements = value["mElements"]

    def to_string(self):
        low, high = self.elements.type.range()
        return f"Array of {high - low + 1}"

    def children(self):
        low, high = self.elements.type.range()
        return indexed([self.elements[i] for i in range(low, high + 1)])

    def display_hint(self):
        return "array"


class IDVectorPrinter:
    """IDVector<T>: the valid ids and their elements."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"IDVector of {int(self.value['mCount'])}"

    def children(self):
        slots = self.value["mSlots"]
        element = self.value.type.strip_typedefs().template_argument(0)
        for i in range(int(self.value["mCapacity"])):
            slot = slots[i]
            if int(slot["mState"]) == 0:  # valid
                yield f"[{i}]", slot["mRoom"].address.cast(element.pointer()).dereference()


class MeshPrinter:
    """NavMeshContainer: what it holds, and its first nodes."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        counts = ", ".join(f"{len(items(self.value[member]))} {name}"
                           for member, name in (("mNodes", "nodes"), ("mVertices", "vertices"), ("mHeights", "heights")))
        return f"NavMeshContainer: {counts}, cubes of {float(self.value['mCubeSize']):g}"

    def children(self):
        for name in ("mNormal", "mXAxis", "mYAxis", "mNodes", "mVertices", "mHeights", "mCharacters", "mSurfaceTypes"):
            yield name, self.value[name]


def printers():
    found = gdb.printing.RegexpCollectionPrettyPrinter("zunopathfinder")
    common = "^ZUNO::Common::"
    found.add_printer("BasicString", common + "BasicString<char>$", StringPrinter)
    found.add_printer("SharedPtr", common + "SharedPtr<.*>$", SharedPtrPrinter)
    found.add_printer("Vec", common + "Math::Vec[23]<.*>$", VectorPrinter)
    found.add_printer("Array", common + "Container::Array<.*>$", ArrayPrinter)
    found.add_printer("IDVector", common + "Container::IDVector<.*>$", IDVectorPrinter)
    found.add_printer("NavMeshContainer", "^ZUNO::NavMesh::NavMeshContainer$", MeshPrinter)
    return found


gdb.printing.register_pretty_printer(None, printers(), replace=True)
