import { pointText } from "./format";
import type { OpenMesh } from "./meshes";
import type { Queries } from "./queries";

/** The searches and the ray, as zunopath run reads them. */
export function scriptText(open: OpenMesh | null): string {
    const lines = [`# queries over ${open?.name ?? "no mesh"}`];
    for (const { start, goal } of open?.running?.queries.all ?? []) lines.push(`path ${pointText(start)} ${pointText(goal)}`);
    const ray = open?.running?.queries.ray;
    if (ray) lines.push(`ray ${pointText(ray.from)} ${pointText(ray.to)}`);
    return lines.join("\n") + "\n";
}

/** All that was answered, to the bit. */
export function resultsOf(queries: Queries | undefined) {
    return {
        searches: (queries?.all ?? []).map(({ state, cost, waypoints, expansions }) => ({ state, cost, waypoints, expansions })),
        hit: queries?.ray?.hit ?? null,
    };
}
