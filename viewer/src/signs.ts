import type { Line2 } from "three/examples/jsm/lines/Line2.js";
import { centreOf, MeshDescription, Vec3 } from "./engine";
import type { Palette } from "./meshview";
import { makePolyline, Marker, MarkerKind } from "./overlays";
import type { Queries } from "./queries";
import { partOf } from "./rays";
import type { View } from "./view";

/** Owner of the signs of the ray. */
export const rayOwner = "ray";

/** Puts paths, rays and signs on the picture, and one on the node to look at. */
export function showSigns(view: View, mesh: MeshDescription, palette: Palette, queries: Queries, focus: number | null): void {
    const lines: Line2[] = [];
    const markers: Marker[] = [];
    const mark = (kind: MarkerKind, colour: string | number, point: Vec3, owner: unknown = null) =>
        markers.push(new Marker(kind, colour, view.toScene(point), owner));
    const isCrowd = queries.all.length > 3;
    for (const search of queries.all) {
        const isActive = search === queries.active;
        if (search.state === "found")
            lines.push(makePolyline([search.start, ...search.waypoints, search.goal], search.colour, mesh, { width: isActive ? 4.5 : 2.5 }));
        else if (search.state !== "running")
            lines.push(makePolyline([search.start, search.goal], search.colour, mesh, { width: 1.5, isDashed: true }));
        if (isCrowd && !isActive) continue;
        mark("start", search.colour, search.start, search);
        mark("goal", search.colour, search.goal, search);
    }
    if (queries.pendingStart) mark("start", palette.mark, queries.pendingStart);
    if (queries.pendingRay) mark("rayStart", palette.mark, queries.pendingRay);
    if (queries.ray) {
        const { from, to, hit } = queries.ray;
        const part = partOf(queries.ray, mesh);
        const at = from.map((value, i) => value + (to[i] - value) * part) as Vec3;
        lines.push(makePolyline([from, at], palette.mark, mesh, { width: 3.5 }));
        if (part < 1) lines.push(makePolyline([at, to], palette.mark, mesh, { width: 1.5, isDashed: true }));
        mark("rayStart", palette.mark, from, rayOwner);
        mark("rayEnd", palette.mark, to, rayOwner);
        if (hit >= 0) mark("hit", palette.wall, at);
    }
    if (focus !== null) mark("focus", palette.mark, centreOf(mesh, focus));
    view.setSigns(lines, markers);
}
