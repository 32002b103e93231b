import { Corridor } from "./corridor.js";
import { Held, make } from "./held.js";
import type { Address, Module } from "./module.js";
import { Path } from "./path.js";
import type { Reason } from "./statuses.js";
import { Content, countAt, limitOf, Place, placeAt, PointLike, putPlace, putPoint } from "./values.js";

/** A place, and how far it is from the point that was asked about, in space. */
export interface NearestPlace extends Place {
    distance: number;
}

const noNode = 0xffffffff;

/** The ground, without a world. */
export class Mesh extends Held {
    /** @internal */
    constructor(module: Module, handle: Address) {
        super(module, handle);
    }

    /** @internal */
    static load(module: Module, content: Content, name: string): Mesh {
        return module.withFile(name, content, () => new Mesh(module, make(module, "mesh_load", 0, module.text(name))));
    }

    /** The mesh's sizes. */
    figures(): { nodes: number; vertices: number; islands: number; bytes: number } {
        const { module } = this;
        const at = module.structs;
        module.words[at >> 2] = 24;
        module.call("mesh_look", this.handle, at);
        const [nodes, vertices, islands] = module.words.subarray((at >> 2) + 1, (at >> 2) + 4);
        return { nodes, vertices, islands, bytes: countAt(module, at + 16) };
    }

    /** A node's corners in their order, three numbers each. */
    outline(node: number): Float32Array {
        const { handle, module } = this;
        return module.fill(3, (array, count) => module.call("mesh_outline", handle, node, array, count)).slice();
    }

    /** The number of a node's island, from 0 for the largest: a path is only possible within one. */
    island(node: number): number {
        const { module } = this;
        module.call("mesh_island", this.handle, node, module.structs);
        return module.words[module.structs >> 2];
    }

    /** The node from which a search would begin at the point; null when it stands on none. */
    findNode(at: PointLike): number | null {
        const { module } = this;
        module.call("mesh_find_node", this.handle, this.put(at), module.structs);
        const node = module.words[module.structs >> 2];
        return node === noNode ? null : node;
    }

    /** The place straight below or above a point, on the floor nearest in height; null where there is none. */
    ground(at: PointLike, height = Infinity): Place | null {
        return this.place("mesh_ground", this.put(at), height);
    }

    /** The place nearest to a point, at most so far away in the plane and in height. */
    nearest(at: PointLike, radius = Infinity, height = Infinity): NearestPlace | null {
        return this.nearestPlace("mesh_nearest", this.put(at), radius, height);
    }

    /** The place nearest to the goal that can be reached from the start; null when that stands on no node. */
    nearestReachable(start: PointLike, goal: PointLike): NearestPlace | null {
        return this.nearestPlace("mesh_nearest_reachable", this.put(start), this.put(goal, 32));
    }

    /** The place of a seed, by chance: the same on every system. */
    random(seed: number | bigint): Place | null {
        return this.place("mesh_random", typeof seed === "bigint" ? BigInt.asUintN(64, seed) : limitOf(seed));
    }

    /** Moves a place towards a target along the surface and its walls, as in a frame's step. */
    move(from: Place, target: PointLike): Place {
        return this.place("mesh_move", this.putFrom(from), this.put(target))!;
    }

    /** Walks straight towards a target, up to the first wall. */
    walk(from: Place, target: PointLike): Place & { isReached: boolean } {
        const { module } = this;
        const end = module.structs;
        module.call("mesh_walk", this.handle, this.putFrom(from), this.put(target), end, end + 16);
        return { ...placeAt(module, end), isReached: module.words[(end + 16) >> 2] === 1 };
    }

    /** The distance in the plane to the nearest wall, or the limit when that is less. */
    wallDistance(from: Place, limit: number): number {
        const { module } = this;
        module.call("mesh_wall_distance", this.handle, this.putFrom(from), limit, module.structs);
        return module.floats[module.structs >> 2];
    }

    /** Why there is, or isn't, a path: in one word and, for people, in whole sentences. */
    explain(start: PointLike, goal: PointLike): { reason: Reason; text: string } {
        const { handle, module } = this;
        const [from, to] = [this.put(start), this.put(goal, 32)];
        const text = textOf(module, (array, size) => module.call("mesh_explain", handle, from, to, module.structs, array, size));
        return { reason: module.words[module.structs >> 2] as Reason, text };
    }

    /** An empty path, to be used again and again. */
    createPath(): Path {
        return new Path(this.module, make(this.module, "path_create", this.handle));
    }

    /** A character at a place. */
    createCorridor(at: Place): Corridor {
        return new Corridor(this.module, make(this.module, "corridor_create", this.handle, this.putFrom(at)));
    }

    private put(point: PointLike, offset = 64): Address {
        return putPoint(this.module, this.module.structs + offset, point);
    }

    private putFrom(place: Place): Address {
        return putPlace(this.module, this.module.structs + 96, place);
    }

    private place(name: string, ...values: (number | bigint)[]): Place | null {
        const { module } = this;
        return module.call(name, this.handle, ...values, module.structs) ? placeAt(module, module.structs) : null;
    }

    private nearestPlace(name: string, ...values: number[]): NearestPlace | null {
        const { module } = this;
        const place = module.structs;
        if (!module.call(name, this.handle, ...values, place, place + 16)) return null;
        return { ...placeAt(module, place), distance: module.floats[(place + 16) >> 2] };
    }
}

/** A text that the library fills in. */
function textOf(module: Module, call: (array: Address, size: Address) => void): string {
    const size = module.structs + 512;
    module.words[size >> 2] = 0;
    call(0, size);
    const room = module.room(module.words[size >> 2]);
    call(room, size);
    return module.textAt(room);
}
