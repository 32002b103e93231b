import type { Line2 } from "three/examples/jsm/lines/Line2.js";
import type { MeshDescription, Vec3 } from "./engine";
import type { Palette } from "./meshview";
import { makePolyline, Marker, MarkerKind } from "./overlays";
import { partOf, Ray } from "./rays";
import type { Search } from "./searches";
import type { View } from "./view";

/** What is to be shown on a mesh besides the mesh itself. */
export interface Situation {
    searches: Search[];
    active: Search | null;
    pendingStart: Vec3 | null;
    ray: Ray | null;
    pendingRay: Vec3 | null;
    /** A node to look at. */
    focus: number | null;
}

/** Owner of the signs of the ray. */
export const rayOwner = "ray";

/** Puts paths, rays and signs on the picture. */
export function showSigns(view: View, mesh: MeshDescription, palette: Palette, situation: Situation): void {
    const lines: Line2[] = [];
    const markers: Marker[] = [];
    const mark = (kind: MarkerKind, colour: string | number, point: Vec3, owner: unknown = null) =>
        markers.push(new Marker(kind, colour, view.toScene(point), owner));
    const isCrowd = situation.searches.length > 3;
    for (const search of situation.searches) {
        const isActive = search === situation.active;
        if (search.state === "found")
            lines.push(makePolyline([search.start, ...search.waypoints, search.goal], search.colour, mesh, { width: isActive ? 4.5 : 2.5 }));
        else if (search.state !== "running")
            lines.push(makePolyline([search.start, search.goal], search.colour, mesh, { width: 1.5, isDashed: true }));
        if (isCrowd && !isActive) continue;
        mark("start", search.colour, search.start, search);
        mark("goal", search.colour, search.goal, search);
    }
    if (situation.pendingStart) mark("start", palette.mark, situation.pendingStart);
    if (situation.pendingRay) mark("rayStart", palette.mark, situation.pendingRay);
    if (situation.ray) {
        const { from, to, hit } = situation.ray;
        const part = partOf(situation.ray, mesh);
        const at = from.map((value, i) => value + (to[i] - value) * part) as Vec3;
        lines.push(makePolyline([from, at], palette.mark, mesh, { width: 3.5 }));
        if (part < 1) lines.push(makePolyline([at, to], palette.mark, mesh, { width: 1.5, isDashed: true }));
        mark("rayStart", palette.mark, from, rayOwner);
        mark("rayEnd", palette.mark, to, rayOwner);
        if (hit >= 0) mark("hit", palette.wall, at);
    }
    if (situation.focus !== null)
        mark("focus", palette.mark, [...mesh.centres.subarray(situation.focus * 3, situation.focus * 3 + 3)] as Vec3);
    view.setSigns(lines, markers);
}
