import { Form, type Mesh, type Path, type Point, type Search, type Session, type Zuno } from "zunopathfinder/external";
import { takeBytes, takeFloats } from "./answers";

/** Of the blocking grid every so manieth cell; x and y are those of its lowest corner, in the plane. */
export interface BlockingGrid {
    columns: number;
    rows: number;
    side: number;
    x: number;
    y: number;
    /** NaN: blocked. */
    heights: Float32Array;
}

/** A world over one mesh: what a host has, and what only tools see of it. */
export class World {
    readonly session: Session;
    readonly ground: Mesh;
    private readonly path: Path;

    constructor(
        private readonly zuno: Zuno,
        mesh: Uint8Array,
    ) {
        this.session = zuno.start(mesh);
        this.ground = zuno.loadMesh(mesh);
        this.path = this.ground.createPath();
    }

    /** A path that holds until the next call; null for what is no path here. */
    straighten(start: Point, goal: Point, waypoints: Float32Array, isImproved: boolean): Path | null {
        return this.path.straighten(start, goal, waypoints, isImproved ? Form.IMPROVED : Form.PLAIN) ? this.path : null;
    }

    /** Of each node 0: not visited, 1: open, 2: closed. */
    nodeStates(search: Search): Uint8Array {
        this.zuno.module.call("tool_node_states", search.handle);
        return takeBytes(this.zuno.module, "states");
    }

    /** Where the islands of two points come nearest to each other; null for points on one, or on none. */
    shores(start: Point, goal: Point): [Point, Point] | null {
        const { module } = this.zuno;
        const at = module.structs >> 2;
        module.floats.set([...start, ...goal], at);
        const isThere = module.call("tool_shores", this.ground.handle, module.structs, module.structs + 12, module.structs + 24);
        const shores = [...module.floats.subarray(at + 6, at + 12)];
        return isThere ? [shores.slice(0, 3) as Point, shores.slice(3) as Point] : null;
    }

    blockingGrid(mostCells: number): BlockingGrid {
        const { module } = this.zuno;
        const at = module.structs >> 2;
        module.call("tool_blocking_grid", this.session.handle, mostCells, module.structs);
        const [columns, rows] = module.words.subarray(at, at + 2);
        const [side, x, y] = module.floats.subarray(at + 2, at + 5);
        return { columns, rows, side, x, y, heights: takeFloats(module, "heights") };
    }

    close(): void {
        this.session.close();
    }
}
