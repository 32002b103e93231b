import type { Address, Module } from "./module.js";

/** x, y and z, in the units of the mesh: [1, 2, 3], a Float32Array, or a part of one. */
export type PointLike = ArrayLike<number>;
export type Point = [number, number, number];
/** In the plane: without the up component (with y up: x and z). */
export type Point2 = [number, number];

/** A place on the surface of a node. */
export interface Place {
    node: number;
    position: Point;
}

/** An XML mesh or a binary one. */
export type Content = ArrayBuffer | ArrayBufferView;

/** Puts a point at an address. */
export function putPoint(module: Module, at: Address, point: PointLike): Address {
    if (point.length < 3) throw new TypeError(`a point has three numbers, not ${point.length}`);
    const { floats } = module;
    for (let i = 0; i < 3; ++i) floats[(at >> 2) + i] = point[i];
    return at;
}

export function pointAt({ floats }: Module, at: Address): Point {
    const i = at >> 2;
    return [floats[i], floats[i + 1], floats[i + 2]];
}

/** Puts a place at an address. */
export function putPlace(module: Module, at: Address, place: Place): Address {
    module.words[at >> 2] = place.node;
    putPoint(module, at + 4, place.position);
    return at;
}

export function placeAt(module: Module, at: Address): Place {
    return { node: module.words[at >> 2], position: pointAt(module, at + 4) };
}

/** A whole number of 64 bits; beyond 2^53 rounded. */
export function countAt(module: Module, at: Address): number {
    return Number(module.data.getBigUint64(at, true));
}

/** A limit for 64 bits; Infinity is none. */
export function limitOf(count: number): bigint {
    return count >= 2 ** 64 ? 2n ** 64n - 1n : BigInt(Math.max(0, Math.floor(count)));
}

/** The bytes of a list of points for a call: those that are in the module's memory stay where they are. */
export function putPoints(module: Module, points: ArrayLike<number>): Address {
    if (points.length % 3 !== 0) throw new TypeError(`points have three numbers each, which ${points.length} are not`);
    if (points instanceof Float32Array && points.buffer === module.bytes.buffer) return points.byteOffset;
    const room = module.room(points.length * 4);
    module.floats.set(points, room >> 2);
    return room;
}
