import type { Module, Point, Point2 } from "zunopathfinder/external";
import { takeFloats, takeIntegers, takeTexts, takeWords } from "./answers";

export interface Defect {
    kind: "defect" | "odd";
    text: string;
}

export interface MeshTables {
    heights: number[];
    characters: { name: string; height: number; jump: number; fall: number; heightClass: number }[];
    surfaces: { name: string; id: number }[];
}

/**
 * What is shown of a mesh. Without `isFit` no world can run over it, and the arrays hold what can be
 * drawn: corners with a place, neighbours that exist, no islands.
 */
export interface MeshDescription {
    defects: Defect[];
    isFit: boolean;
    isBinary: boolean;
    cubeSize: number;
    normal: Point;
    xAxis: Point;
    yAxis: Point;
    tables: MeshTables;
    memory: number;
    vertices: Float32Array;
    /** Of each node the place of its first corner in `corners`, and one for the end. */
    firstCorners: Uint32Array;
    corners: Uint32Array;
    /** Beyond the border that begins at a corner: a node, or below 0. */
    neighbours: Int32Array;
    heightClasses: Int32Array;
    surfaceTypes: Int32Array;
    /** NaN for a node that has no place. */
    centres: Float32Array;
    /** Of each node the island's number, the largest first. */
    islands: Uint32Array;
}

function takeTables(module: Module): MeshTables {
    const sizes = takeFloats(module, "characterSizes");
    const classes = takeWords(module, "characterClasses");
    const ids = takeWords(module, "surfaceIds");
    return {
        heights: [...takeFloats(module, "heights")],
        characters: takeTexts(module, "characterNames").map((name, i) => {
            const [height, jump, fall] = sizes.subarray(i * 3);
            return { name, height, jump, fall, heightClass: classes[i] };
        }),
        surfaces: takeTexts(module, "surfaceNames").map((name, i) => ({ name, id: ids[i] })),
    };
}

/** Looks at a mesh of either form. Throws a ZunoError for what is none. */
export function lookAtMesh(module: Module, content: Uint8Array): MeshDescription {
    const file = "mesh";
    module.withFile(file, content, () => module.call("tool_mesh_look", module.text(file), module.structs));
    const at = module.structs >> 2;
    const [isFit, isBinary, memory] = module.words.subarray(at);
    const [cubeSize, ...axes] = module.floats.subarray(at + 3, at + 13);
    const defects = (kind: Defect["kind"], name: string) => takeTexts(module, name).map((text) => ({ kind, text }));
    return {
        defects: [...defects("defect", "defects"), ...defects("odd", "oddities")],
        isFit: isFit === 1,
        isBinary: isBinary === 1,
        cubeSize,
        normal: axes.slice(0, 3) as Point,
        xAxis: axes.slice(3, 6) as Point,
        yAxis: axes.slice(6) as Point,
        tables: takeTables(module),
        memory,
        vertices: takeFloats(module, "vertices"),
        firstCorners: takeWords(module, "firstCorners"),
        corners: takeWords(module, "corners"),
        neighbours: takeIntegers(module, "neighbours"),
        heightClasses: takeIntegers(module, "heightClasses"),
        surfaceTypes: takeIntegers(module, "surfaceTypes"),
        centres: takeFloats(module, "centres"),
        islands: takeWords(module, "islands"),
    };
}

/** Where a node's centre is. */
export function centreOf({ centres }: MeshDescription, node: number): Point {
    return [centres[node * 3], centres[node * 3 + 1], centres[node * 3 + 2]];
}

/** The axis that a position in the plane leaves out. */
function upAxisOf({ normal }: MeshDescription): number {
    const size = normal.map(Math.abs);
    return size.indexOf(Math.max(...size));
}

/** The host's position of a point: without its up component. */
export function withoutUp(mesh: MeshDescription, point: Point): Point2 {
    const up = upAxisOf(mesh);
    return point.filter((_, axis) => axis !== up) as Point2;
}

/** A position in the plane, put as high as the mesh is lowest. */
export function liftToMesh(mesh: MeshDescription, position: Point2): Point {
    const up = upAxisOf(mesh);
    let lowest = Infinity;
    for (let i = up; i < mesh.vertices.length; i += 3) lowest = Math.min(lowest, mesh.vertices[i]);
    const point: number[] = [...position];
    point.splice(up, 0, lowest);
    return point as Point;
}
