// What viewer/bake/recastmodule.h asks of Recast: a module of its own, compiled by its npm package.
import Recast from "@recast-navigation/wasm/wasm";

/** A place in the memory of the baker, or in Recast's. */
type Pointer = number;
type Address = number;

/** The package's functions take objects by where they lie, too; its types don't tell. */
type Call = (...values: (Address | number)[]) => number | boolean | object;
type Calls = Record<string, Call>;

const levelOfErrors = 3;
const kinds = ["Heightfield", "CompactHeightfield", "ContourSet", "PolyMesh"];

/** A list in Recast's memory, as its functions take it. */
interface List {
    resize(size: number): void;
    getDataPointer(): Address;
}

/** Starts Recast. Returns the functions for the baker, whose memory is asked for at each call. */
export async function startRecast(compiled: WebAssembly.Module, ourBytes: () => Uint8Array) {
    const recast = await Recast({
        instantiateWasm: (imports: WebAssembly.Imports, receive: (instance: WebAssembly.Instance) => void) => {
            const instance = new WebAssembly.Instance(compiled, imports);
            receive(instance);
            return instance.exports;
        },
    });
    const calls = new recast.Recast() as unknown as Calls;
    const addressOf = (object: unknown): Address => recast.getPointer(object);
    const theirBytes = () => recast.HEAPU8;

    let fault = "";
    const log = new recast.RecastBuildContextJsImpl();
    log.log = (level: number, text: Address, length: number) => {
        if (level === levelOfErrors) fault = new TextDecoder().decode(theirBytes().slice(text, text + length));
    };
    for (const name of ["resetLog", "resetTimers", "startTimer", "stopTimer"] as const) log[name] = () => {};
    log.getAccumulatedTime = () => -1;
    const context = addressOf(new recast.RecastBuildContext(log));

    const read = (to: Pointer, from: Address, size: number) => ourBytes().set(theirBytes().subarray(from, from + size), to);
    const write = (to: Address, from: Pointer, size: number) => theirBytes().set(ourBytes().subarray(from, from + size), to);
    const fill = (list: List, size: number, from: Pointer, bytesEach: number): Address => {
        list.resize(size);
        write(list.getDataPointer(), from, size * bytesEach);
        return addressOf(list);
    };
    const [vertices, triangles, areas] = [new recast.FloatArray(), new recast.IntArray(), new recast.UnsignedCharArray()];
    let vertexCount = -1;
    const fillVertices = (from: Pointer, count: number): Address => {
        if (count !== vertexCount) fill(vertices, count * 3, from, 4);
        vertexCount = count;
        return addressOf(vertices);
    };
    const floats = (from: Pointer) => [...new Float32Array(ourBytes().slice(from, from + 12).buffer)] as unknown as Address;

    return {
        recast_make: (kind: number) => addressOf(calls[`alloc${kinds[kind]}`]()),
        recast_release: (kind: number, object: Address) => {
            calls[`free${kinds[kind]}`](object);
        },
        recast_read: read,
        recast_write: write,
        recast_fault: (to: Pointer, room: number) => {
            const text = new TextEncoder().encode(fault).subarray(0, room - 1);
            ourBytes().set(text, to);
            ourBytes()[to + text.length] = 0;
            fault = "";
        },
        recast_create: (solid: Address, width: number, height: number, low: Pointer, high: Pointer, side: number, cellHeight: number) =>
            calls.createHeightfield(context, solid, width, height, floats(low), floats(high), side, cellHeight),
        recast_mark: (slope: number, v: Pointer, vCount: number, t: Pointer, count: number, a: Pointer) => {
            const [corners, faces, marks] = [fillVertices(v, vCount), fill(triangles, count * 3, t, 4), fill(areas, count, a, 1)];
            calls.markWalkableTriangles(context, slope, corners, vCount, faces, count, marks);
            read(a, areas.getDataPointer(), count);
        },
        recast_rasterise: (v: Pointer, vCount: number, t: Pointer, a: Pointer, count: number, solid: Address, climb: number) =>
            calls.rasterizeTriangles(context, fillVertices(v, vCount), vCount, fill(triangles, count * 3, t, 4),
                                     fill(areas, count, a, 1), count, solid, climb),
        recast_filter_obstacles: (climb: number, solid: Address) => {
            calls.filterLowHangingWalkableObstacles(context, climb, solid);
        },
        recast_filter_ledges: (height: number, climb: number, solid: Address) => {
            calls.filterLedgeSpans(context, height, climb, solid);
        },
        recast_compact: (height: number, climb: number, solid: Address, field: Address) =>
            calls.buildCompactHeightfield(context, height, climb, solid, field),
        recast_erode: (radius: number, field: Address) => calls.erodeWalkableArea(context, radius, field),
        recast_measure: (field: Address) => calls.buildDistanceField(context, field),
        recast_divide: (field: Address, border: number, least: number, merged: number) =>
            calls.buildRegions(context, field, border, least, merged),
        recast_contour: (field: Address, error: number, longest: number, contours: Address, flags: number) =>
            calls.buildContours(context, field, error, longest, contours, flags),
        recast_polygons: (contours: Address, corners: number, polygons: Address) =>
            calls.buildPolyMesh(context, contours, corners, polygons),
    };
}
