import type { Corridor, CorridorState, Point } from "zunopathfinder/external";

export function distanceOf(from: ArrayLike<number>, to: ArrayLike<number>): number {
    return Math.hypot(to[0] - from[0], to[1] - from[1], to[2] - from[2]);
}

export function isAtGoal({ hasPath, position, goal }: CorridorState, within: number): boolean {
    return hasPath && distanceOf(position, goal.position) <= within;
}

/** Moves a character towards its next corner, at most so far. Corners nearer than `near` count as passed. */
export function stride(corridor: Corridor, state: CorridorState, longest: number, near: number): { state: CorridorState; walked: number } {
    const { position } = state;
    const corner = corridor.next(near);
    const rest = distanceOf(position, corner);
    if (!(rest > 0)) return { state, walked: 0 };
    const share = Math.min(1, longest / rest);
    corridor.move(position.map((value, axis) => value + (corner[axis] - value) * share) as Point);
    const next = corridor.state();
    return { state: next, walked: distanceOf(position, next.position) };
}
