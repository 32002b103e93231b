import { shortText } from "./format";
import type { OpenMesh } from "./meshes";
import { withoutUp } from "./meshlook";
import type { Palette } from "./meshview";
import { element, setPressed, setText, showLegend } from "./panel";
import type { Pick } from "./pointer";
import type { Tool } from "./queries";

/** What the line at the bottom tells of the place under the pointer. */
export function showPointer(pick: Pick | null, open: OpenMesh | null): void {
    if (!pick || !open) {
        for (const id of ["pointer", "node", "ground"]) setText(id, "");
        return;
    }
    const { mesh, running } = open;
    setText("pointer", pick.point.map(shortText).join(", "));
    if (!running) return setText("node", "no world");
    const { session, ground } = running.world;
    // what a search would start from: where floors meet, the lowest id
    const node = ground.findNode(pick.point);
    const surface = mesh.tables.surfaces.find((type) => node !== null && type.id === mesh.surfaceTypes[node]);
    setText("node", node === null ? "no node" : `node ${node} · class ${mesh.heightClasses[node]}${surface ? ` · ${surface.name}` : ""}`);
    const position = withoutUp(mesh, pick.point);
    const height = session.groundHeight(...position);
    setText("ground", session.isBlocked(...position) ? "blocked" : height === null ? "no ground" : `ground ${shortText(height)}`);
}

export function showColours(palette: Palette, open: OpenMesh | null, showsGrid: boolean): void {
    const entries: [number, string][] = [
        [palette.lowFloor, "lowest floor"],
        [palette.highFloor, "highest floor"],
        [palette.wall, "border without neighbour"],
    ];
    if (open?.mesh.islands.some((island) => island > 0)) entries.push([palette.islands[0], "island apart"]);
    if (open?.running?.queries.active) entries.push([palette.open, "open"], [palette.closed, "closed"]);
    if (open?.running?.crowd.isOut) entries.push([palette.walker, "walks"], [palette.waiting, "waits for a path"]);
    if (showsGrid) entries.push([palette.blocked, "blocked"]);
    showLegend(entries);
}

const hints: Record<Tool, [string, string]> = {
    path: ["Click where the path starts", "Click the goal"],
    ray: ["Click where the ray begins", "Click where it ends"],
    look: ["", ""],
};

/** What to do next: the hint, which is silent while something else is busy, and the buttons that make sense. */
export function showControls(open: OpenMesh | null, tool: Tool, awaitedFile: string | null, isBusy: boolean): void {
    const queries = open?.running?.queries ?? null;
    const isPending = !!(tool === "path" ? queries?.pendingStart : queries?.pendingRay);
    const isDone = tool === "path" ? queries?.active && !queries.addsNext : queries?.ray;
    const invitation = awaitedFile ? `This address is about ${awaitedFile}: drop that file here` : "Choose a sample, or drop a mesh file";
    setText("hint", !open || awaitedFile ? invitation : queries && !isBusy && (isPending || !isDone) ? hints[tool][isPending ? 1 : 0] : "");
    setText("play", queries?.isPlaying ? "Pause" : "Play");
    const enable = (ids: string[], isEnabled: boolean) => {
        for (const id of ids) element<HTMLButtonElement>(id).disabled = !isEnabled;
    };
    enable(["play", "step", "finish"], !!queries?.board.isRunning);
    enable(["restart", "clear"], !!queries?.all.length);
    enable(["undo"], !!queries?.canUndo);
    enable(["another", "twenty", "script", "grid", "crowdWalk", "fromPoint", "toPoint"], !!queries);
    enable(["walk"], queries?.active?.state === "found");
    setPressed(element("another"), !!queries?.addsNext);
    for (const button of document.querySelectorAll<HTMLElement>("[data-tool]")) setPressed(button, button.dataset.tool === tool);
}
