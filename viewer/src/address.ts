import type { Point } from "zunopathfinder/external";
import { parsePoint, pointText, shortText } from "./format";
import type { StraightForm } from "./searches";

/** What the page's address tells: enough for a colleague to see the same. */
export interface AddressState {
    sample: string | null;
    /** The name of the file that was open instead of a sample: the address can't hold it. */
    file: string | null;
    searches: [Point, Point][];
    ray: [Point, Point] | null;
    camera: [Point, Point] | null;
    isTopView: boolean;
    showsGrid: boolean;
    showsLabels: boolean;
    form: StraightForm;
    /** The height above which nothing is shown. */
    cut: number | null;
}

const forms: StraightForm[] = ["improved", "plain", "centres"];

function parsePair(text: string | null): [Point, Point] | null {
    const [first, second] = (text ?? "").split(";");
    const from = parsePoint(first);
    const to = parsePoint(second);
    return from && to ? [from, to] : null;
}

export function readAddress(): AddressState {
    const fields = new URLSearchParams(location.hash.slice(1));
    return {
        sample: fields.get("mesh"),
        file: fields.get("file"),
        searches: fields.getAll("path").map(parsePair).filter((pair) => pair !== null),
        ray: parsePair(fields.get("ray")),
        camera: parsePair(fields.get("camera")),
        isTopView: fields.get("view") === "top",
        showsGrid: fields.has("grid"),
        showsLabels: fields.has("labels"),
        form: forms.find((form) => form === fields.get("way")) ?? "improved",
        cut: fields.has("cut") && Number.isFinite(Number(fields.get("cut"))) ? Number(fields.get("cut")) : null,
    };
}

/** What of an address the browser's Back goes back to: mesh and queries, not how they are seen. */
function queriesOf(hash: string): string {
    return hash.replace(/^#/, "").split("&").filter((field) => /^(mesh|file|path|ray)=/.test(field)).join("&");
}

export function writeAddress(state: AddressState): void {
    const pair = ([from, to]: [Point, Point], text: (p: Point) => string) => `${text(from)};${text(to)}`;
    const fields: string[] = [];
    if (state.sample) fields.push(`mesh=${encodeURIComponent(state.sample)}`);
    if (state.file) fields.push(`file=${encodeURIComponent(state.file)}`);
    for (const search of state.searches) fields.push(`path=${pair(search, pointText)}`);
    if (state.ray) fields.push(`ray=${pair(state.ray, pointText)}`);
    if (state.camera)
        fields.push(`camera=${pair(state.camera, (p) => p.map(shortText).join(","))}`);
    if (state.isTopView) fields.push("view=top");
    if (state.showsGrid) fields.push("grid");
    if (state.showsLabels) fields.push("labels");
    if (state.form !== "improved") fields.push(`way=${state.form}`);
    if (state.cut !== null) fields.push(`cut=${shortText(state.cut)}`);
    const hash = `#${fields.join("&")}`;
    const isNew = location.hash.length > 1 && queriesOf(location.hash) !== queriesOf(hash);
    if (isNew) history.pushState(null, "", hash);
    else history.replaceState(null, "", hash);
}
