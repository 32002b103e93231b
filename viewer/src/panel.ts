import type { Point } from "zunopathfinder/external";
import { byteText, pointText, shortText } from "./format";
import type { MeshDescription } from "./meshlook";
import type { Search, StraightForm } from "./searches";

export function element<T extends HTMLElement = HTMLElement>(id: string): T {
    const found = document.getElementById(id);
    if (!found) throw new Error(`the page has no ${id}`);
    return found as T;
}

export function setText(id: string, text: string): void {
    const place = element(id);
    if (place.textContent !== text) place.textContent = text;
}

export function setPressed(button: HTMLElement, isPressed: boolean): void {
    button.setAttribute("aria-pressed", String(isPressed));
}

export function save(name: string, content: Blob): void {
    const link = document.createElement("a");
    link.download = name;
    link.href = URL.createObjectURL(content);
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 1000);
}

/** Browsers count in steps of a tenth of a millisecond. */
function timeText(milliseconds: number): string {
    return milliseconds < 0.1 ? "below 0.1 ms" : `${milliseconds.toFixed(1)} ms`;
}

/** Shows names and values; the list keeps its lines when they are the same. */
export function showRows(id: string, rows: [string, string][]): void {
    const list = element(id);
    const key = JSON.stringify(rows);
    if (list.dataset.key === key) return;
    list.dataset.key = key;
    list.replaceChildren(
        ...rows.flatMap(([name, value]) => {
            const term = document.createElement("dt");
            term.textContent = name;
            const text = document.createElement("dd");
            text.textContent = value;
            return [term, text];
        }),
    );
}

/** A field with a point; what somebody is typing stays. */
function showPoint(id: string, point: Point | null): void {
    const field = element<HTMLInputElement>(id);
    if (field !== document.activeElement) field.value = point?.map(shortText).join(", ") ?? "";
}

/** Shows one search's figures; null: none. A start may be known before its goal. */
export function showFigures(search: Search | null, form: StraightForm, pendingStart: Point | null): void {
    const found = search?.state === "found" ? search : null;
    setText("state", search?.state ?? "–");
    setText("cost", found ? shortText(found.cost) : "–");
    setText("waypointCount", found ? String(found.waypoints.length) : "–");
    setText("expansions", search ? search.expansions.toLocaleString("en") : "–");
    setText("time", search ? timeText(search.milliseconds) : "–");
    const centres = found?.wayIn("centres");
    setText("centresLength", centres ? shortText(centres.length) : "–");
    const straight = found && form !== "centres" ? found.wayIn(form) : null;
    const part = straight && centres!.length > 0 ? `, ${((100 * straight.length) / centres!.length).toFixed(0)} %` : "";
    setText("straightLength", straight ? `${shortText(straight.length)}${part}, ${straight.points.length} corners` : "–");
    showPoint("fromPoint", pendingStart ?? search?.start ?? null);
    showPoint("toPoint", pendingStart ? null : (search?.goal ?? null));
    showWhy(search);
    const list = element("waypoints");
    const shown = search?.waypoints ?? [];
    if (list.dataset.path === String(search?.cost) && list.childElementCount === Math.min(shown.length, 500)) return;
    list.dataset.path = String(search?.cost);
    list.replaceChildren(
        ...shown.slice(0, 500).map((point) => {
            const item = document.createElement("li");
            item.textContent = point.map(shortText).join(", ");
            item.dataset.point = pointText(point);
            return item;
        }),
    );
}

/** Why a search found nothing, in words. */
function showWhy(search: Search | null): void {
    const hasNone = search?.state === "off mesh" || search?.state === "no path";
    element("why").hidden = !hasNone;
    if (!hasNone) return;
    const { text, start, goal } = search.explanation;
    setText("whyText", text.trim());
    element("useNearest").hidden = search.state !== "off mesh" || !start || !goal;
}

/** The list of searches; an entry can be chosen, and closed. */
export function showSearches(
    searches: Search[],
    active: Search | null,
    choose: (search: Search) => void,
    close: (search: Search) => void,
): void {
    element("searches").replaceChildren(
        ...searches.map((search) => {
            const entry = document.createElement("div");
            entry.className = "entry";
            entry.setAttribute("aria-current", String(search === active));
            const dot = document.createElement("i");
            dot.style.background = search.colour;
            const cells = [search.state, search.state === "found" ? shortText(search.cost) : "–", `${search.expansions} exp.`].map(
                (text) => {
                    const cell = document.createElement("span");
                    cell.textContent = text;
                    return cell;
                },
            );
            const button = document.createElement("button");
            button.textContent = "×";
            button.title = "Close this search";
            button.addEventListener("click", (event) => {
                event.stopPropagation();
                close(search);
            });
            entry.append(dot, ...cells, button);
            entry.addEventListener("click", () => choose(search));
            return entry;
        }),
    );
}

function makeTable(title: string, heads: string[], rows: (string | number)[][]): HTMLElement {
    const table = document.createElement("table");
    table.createCaption().textContent = title;
    const head = table.createTHead().insertRow();
    for (const text of heads) {
        const cell = document.createElement("th");
        cell.textContent = text;
        head.append(cell);
    }
    const body = table.createTBody();
    for (const row of rows) {
        const line = body.insertRow();
        for (const value of row)
            line.insertCell().textContent = typeof value === "number" ? shortText(value) : value;
    }
    return table;
}

/** What the mesh is, its tables, and how long it took. */
export function showMesh(mesh: MeshDescription, figures: [string, string][]): void {
    const rows: [string, string][] = [];
    const nodes = mesh.firstCorners.length - 1;
    const links = mesh.neighbours.reduce((sum, id) => sum + (id >= 0 ? 1 : 0), 0);
    rows.push(
        ["Nodes", nodes.toLocaleString("en")],
        ["Vertices", (mesh.vertices.length / 3).toLocaleString("en")],
        ["Borders", `${mesh.corners.length.toLocaleString("en")}, ${links.toLocaleString("en")} with neighbour`],
    );
    if (mesh.isFit) rows.push(["Islands", String(mesh.islands.reduce((most, id) => Math.max(most, id), 0) + 1)]);
    rows.push(
        ["Cube size", shortText(mesh.cubeSize)],
        ["Up", mesh.normal.join(", ")],
        ["Form", mesh.isBinary ? "binary" : "XML"],
        ["Mesh memory", byteText(mesh.memory)],
        ...figures,
    );
    showRows("meshFigures", rows);
    const { heights, characters, surfaces } = mesh.tables;
    const nodesOfClass = (number: number) => mesh.heightClasses.filter((id) => id === number).length;
    element("tables").replaceChildren(
        makeTable("Height classes", ["class", "height", "nodes"], heights.map((height, i) => [String(i), height, String(nodesOfClass(i))])),
        makeTable("Characters", ["name", "height", "jump", "fall", "class"],
                  characters.map((c) => [c.name, c.height, c.jump, c.fall, String(c.heightClass)])),
        makeTable("Surface types", ["id", "name"], surfaces.map((s) => [String(s.id), s.name])),
    );
}

/** The list of defects; those of a node jump to it. */
export function showDefects(mesh: MeshDescription | null, jump: (node: number) => void): void {
    const defects = mesh?.defects ?? [];
    setText("defectCount", defects.length ? String(defects.length) : "");
    const isBroken = mesh !== null && !mesh.isFit;
    const hint = (isBroken ? "No world runs over this mesh. " : "") + "Click to see the place.";
    setText("defectHint", defects.length ? hint : "Nothing is wrong with this mesh.");
    element("defects").replaceChildren(
        ...defects.map(({ kind, text }) => {
            const entry = document.createElement("button");
            entry.className = kind;
            entry.textContent = text;
            const node = Number(/^node (\d+)/.exec(text)?.[1] ?? NaN);
            entry.disabled = !Number.isFinite(mesh?.centres[node * 3]);
            entry.addEventListener("click", () => jump(node));
            return entry;
        }),
    );
}

/** The legend: colours and what they mean. */
export function showLegend(entries: [number, string][]): void {
    const legend = element("legend");
    const key = entries.join();
    if (legend.dataset.key === key) return;
    legend.dataset.key = key;
    legend.replaceChildren(
        ...entries.flatMap(([colour, text]) => {
            const sign = document.createElement("i");
            sign.style.background = `#${colour.toString(16).padStart(6, "0")}`;
            const name = document.createElement("span");
            name.textContent = text;
            return [sign, name];
        }),
    );
}

export function showTab(name: string): void {
    for (const tab of document.querySelectorAll<HTMLElement>("[data-tab]"))
        tab.setAttribute("aria-selected", String(tab.dataset.tab === name));
    for (const panel of document.querySelectorAll<HTMLElement>("[data-panel]")) panel.hidden = panel.dataset.panel !== name;
}
