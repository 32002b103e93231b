import type { Point } from "zunopathfinder/external";
import { floatText, shortText } from "./format";
import type { MeshDescription } from "./meshlook";
import { setText } from "./panel";

export interface Ray {
    from: Point;
    to: Point;
    /** In units of the mesh's plane; below 0: nothing is hit. */
    hit: number;
}

/** Where along a ray its hit lies: 0 at its start, 1 at its end. */
export function partOf(ray: Ray, { xAxis, yAxis }: MeshDescription): number {
    const dot = (axis: Point) => axis.reduce((sum, value, i) => sum + value * (ray.to[i] - ray.from[i]), 0);
    const length = Math.hypot(dot(xAxis), dot(yAxis));
    return ray.hit < 0 ? 1 : length > 0 ? Math.min(ray.hit / length, 1) : 0;
}

export function showRay(ray: Ray | null): void {
    setText("hit", !ray ? "–" : ray.hit < 0 ? "no hit" : `at ${floatText(ray.hit)}`);
    setText("rayLength", ray ? shortText(Math.hypot(...ray.to.map((value, i) => value - ray.from[i]))) : "–");
    setText("rayFrom", ray ? ray.from.map(shortText).join(", ") : "–");
    setText("rayTo", ray ? ray.to.map(shortText).join(", ") : "–");
}
