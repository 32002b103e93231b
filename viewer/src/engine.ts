/** The runtime, compiled for the page: what its functions take and give. */

export type Vec2 = [number, number];
export type Vec3 = [number, number, number];

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
 * A loaded mesh. Without `isFit` there is no world over it, and the arrays hold what can be drawn:
 * corners with a place, neighbours that exist, no islands.
 */
export interface MeshDescription {
    defects: Defect[];
    isFit: boolean;
    isBinary: boolean;
    cubeSize: number;
    normal: Vec3;
    xAxis: Vec3;
    yAxis: Vec3;
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

/** Where a node's centre is. */
export function centreOf({ centres }: MeshDescription, node: number): Vec3 {
    return [centres[node * 3], centres[node * 3 + 1], centres[node * 3 + 2]];
}

export interface MemoryFigures {
    blocks: number;
    bytes: number;
    peak: number;
}

export interface BlockingGrid {
    columns: number;
    rows: number;
    side: number;
    x: number;
    y: number;
    /** Every so manieth cell is there. */
    step: number;
    /** NaN: blocked. */
    heights: Float32Array;
}

export enum SearchResult {
    Found = 0,
    Running = 1,
    NoPath = 2,
}

/** One world over one mesh. Functions raise an Error with the runtime's own message. */
export interface Engine {
    openMesh(bytes: Uint8Array): MeshDescription;
    closeWorld(): MemoryFigures;
    memory(): MemoryFigures;
    /** Below 0 when a point stands on no node. */
    openSearch(start: Vec3, goal: Vec3): number;
    runSearch(id: number, budget: number): SearchResult;
    takeWaypoints(id: number): Float32Array;
    pathCost(id: number): number;
    closeSearch(id: number): boolean;
    /** Of each node 0: not visited, 1: open, 2: closed. */
    nodeStates(id: number): Uint8Array;
    nodeAt(point: Vec3): number;
    isBlocked(position: Vec2): boolean;
    groundHeight(position: Vec2): number;
    /** Below 0 when nothing is hit. */
    traceRay(start: Vec3, end: Vec3): number;
    blockingGrid(mostCells: number): BlockingGrid;
}

declare global {
    function createEngine(): Promise<Engine>;
    /** Sample meshes by name: gzip, in base 64. */
    const zunoSamples: Record<string, string>;
}

/** What `groundHeight` gives where there is no ground. */
export const noGround = Math.fround(3.4028235e38);
