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

/** The axis that a position in the plane leaves out. */
function upAxisOf({ normal }: MeshDescription): number {
    const size = normal.map(Math.abs);
    return size.indexOf(Math.max(...size));
}

/** The host's position of a point: without its up component. */
export function withoutUp(mesh: MeshDescription, point: Vec3): Vec2 {
    const up = upAxisOf(mesh);
    return point.filter((_, axis) => axis !== up) as Vec2;
}

/** A position in the plane, put as high as the mesh is lowest. */
export function liftToMesh(mesh: MeshDescription, position: Vec2): Vec3 {
    const up = upAxisOf(mesh);
    let lowest = Infinity;
    for (let i = up; i < mesh.vertices.length; i += 3) lowest = Math.min(lowest, mesh.vertices[i]);
    const point: number[] = [...position];
    point.splice(up, 0, lowest);
    return point as Vec3;
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

export interface StraightPath {
    /** From the start to the goal, three numbers each. */
    corners: Float32Array;
    length: number;
}

/** Why there is, or is not, a path. */
export interface Explanation {
    /** Sentences, a line each. */
    text: string;
    /** The places nearest to start and goal from which a search can begin. */
    start: Vec3 | null;
    goal: Vec3 | null;
    /** Where the islands of the two come nearest to each other, when they are two. */
    startShore: Vec3 | null;
    goalShore: Vec3 | null;
}

export interface WalkerStep {
    point: Vec3;
    walked: number;
    isThere: boolean;
}

export interface CrowdFigures {
    frames: number;
    queue: number;
    longestQueue: number;
    found: number;
    noPath: number;
    offMesh: number;
    /** Of all answers together. */
    framesWaited: number;
    mostFramesWaited: number;
    goalsReached: number;
    distance: number;
    centresLength: number;
    straightLength: number;
}

/** A host's calls, in arrays with an entry for each: six arguments, four floats of an answer. */
export interface RecordedCalls {
    isWhole: boolean;
    /** The file that the host named. */
    mesh: string;
    kinds: Uint8Array;
    ids: Int32Array;
    answers: Int32Array;
    arguments: Float32Array;
    answerFloats: Float32Array;
}

export interface ReplayOutcome {
    calls: number;
    searches: number;
    /** The first call that answers otherwise, by its number from 1. */
    difference: { call: number; text: string } | null;
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

    /** Null when nothing is within the radius, seen from above. */
    findNearest(point: Vec3, radius: number): { point: Vec3; distance: number } | null;
    explain(start: Vec3, goal: Vec3): Explanation;
    /** Of a found path; null for what is none on this mesh. */
    straighten(start: Vec3, goal: Vec3, waypoints: Float32Array, isImproved: boolean): StraightPath | null;
    sendWalker(start: Vec3, goal: Vec3, waypoints: Float32Array, isImproved: boolean): boolean;
    stepWalker(distance: number): WalkerStep;

    startCrowd(characters: number, seed: number, speed: number): void;
    /** Returns the expansions that were charged. */
    runCrowdFrame(budget: number): number;
    /** Of each character its place, and 1 when it waits for a path. */
    crowdPlaces(): Float32Array;
    crowdFigures(): CrowdFigures;
    endCrowd(): void;

    openRecording(bytes: Uint8Array): RecordedCalls;
    callText(index: number): string;
    answerText(index: number): string;
    /** For an engine without a world; the mesh by its file's bytes. */
    runRecording(mesh: Uint8Array): ReplayOutcome;
}

declare global {
    function createEngine(): Promise<Engine>;
    /** Sample meshes by name: gzip, in base 64. */
    const zunoSamples: Record<string, string>;
}

/** What `groundHeight` gives where there is no ground. */
export const noGround = Math.fround(3.4028235e38);
