import type { Line2 } from "three/examples/jsm/lines/Line2.js";
import type { Point } from "zunopathfinder/external";
import { centreOf, type MeshDescription } from "./meshlook";
import type { Palette } from "./meshview";
import { makePolyline, Marker, MarkerKind } from "./overlays";
import type { Queries } from "./queries";
import { partOf } from "./rays";
import type { ShownCalls } from "./recording";
import type { Search, StraightForm } from "./searches";
import type { View } from "./view";

/** Owner of the signs of the ray. */
export const rayOwner = "ray";

export interface Shown {
    /** Null without a world. */
    queries: Queries | null;
    form: StraightForm;
    /** A node to look at. */
    focus: number | null;
    /** The calls of a recording up to one of them. */
    calls: ShownCalls | null;
}

/** Puts paths, rays and signs on the picture. */
export function showSigns(view: View, mesh: MeshDescription, palette: Palette, { queries, form, focus, calls }: Shown): void {
    const lines: Line2[] = [];
    const markers: Marker[] = [];
    const mark = (kind: MarkerKind, colour: string | number, point: Point, owner: unknown = null) =>
        markers.push(new Marker(kind, colour, view.toScene(point), owner));
    const draw = (points: Point[], colour: string | number, style: Parameters<typeof makePolyline>[3]) =>
        lines.push(makePolyline(points, colour, mesh, style));

    const showPath = (search: Search, isActive: boolean) => {
        const { start, goal, colour } = search;
        if (search.state === "found") {
            if (form !== "centres" && isActive) draw(search.wayIn("centres").points, colour, { width: 1.8, opacity: 0.45 });
            draw(search.wayIn(form).points, colour, { width: isActive ? 4.5 : 2.5 });
        } else if (search.state !== "running") {
            draw([start, goal], colour, { width: 1.5, isDashed: true });
            const { shores } = search.explanation;
            if (!isActive || !shores) return;
            draw(shores, palette.mark, { width: 3 });
            for (const shore of shores) mark("hit", palette.mark, shore);
        }
    };
    const all = queries?.all ?? [];
    const isCrowd = all.length > 3;
    for (const search of all) {
        const isActive = search === queries?.active;
        showPath(search, isActive);
        if (isCrowd && !isActive) continue;
        mark("start", search.colour, search.start, search);
        mark("goal", search.colour, search.goal, search);
    }
    if (queries?.pendingStart) mark("start", palette.mark, queries.pendingStart);
    if (queries?.pendingRay) mark("rayStart", palette.mark, queries.pendingRay);

    const showRay = (from: Point, to: Point, part: number, owner: unknown) => {
        const at = from.map((value, i) => value + (to[i] - value) * part) as Point;
        draw([from, at], palette.mark, { width: 3.5 });
        if (part < 1) draw([at, to], palette.mark, { width: 1.5, isDashed: true });
        mark("rayStart", palette.mark, from, owner);
        mark("rayEnd", palette.mark, to, owner);
        if (part < 1) mark("hit", palette.wall, at);
    };
    if (queries?.ray) showRay(queries.ray.from, queries.ray.to, partOf(queries.ray, mesh), rayOwner);

    for (const { start, goal, waypoints, isCurrent } of calls?.searches ?? []) {
        const colour = isCurrent ? palette.mark : palette.path;
        if (waypoints.length) draw([start, ...waypoints], colour, { width: isCurrent ? 4 : 2 });
        draw([waypoints.at(-1) ?? start, goal], colour, { width: 1.2, isDashed: true });
        mark("start", colour, start);
        mark("goal", colour, goal);
    }
    for (const path of calls?.answered ?? []) draw(path, palette.path, { width: 1.6, opacity: 0.4 });
    if (calls?.ray) showRay(calls.ray.from, calls.ray.to, partOf(calls.ray, mesh), null);
    if (calls?.point) mark("focus", palette.mark, calls.point);
    if (focus !== null) mark("focus", palette.mark, centreOf(mesh, focus));
    view.setSigns(lines, markers);
}
