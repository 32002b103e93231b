import type { Vec3 } from "./engine";
import { parsePoint, pointText, shortText } from "./format";

/** What the page's address tells: enough for a colleague to see the same. */
export interface AddressState {
    sample: string | null;
    /** The name of the file that was open instead of a sample: the address can't hold it. */
    file: string | null;
    searches: [Vec3, Vec3][];
    ray: [Vec3, Vec3] | null;
    camera: [Vec3, Vec3] | null;
    isTopView: boolean;
    showsGrid: boolean;
    showsLabels: boolean;
}

function parsePair(text: string | null): [Vec3, Vec3] | null {
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
    };
}

export function writeAddress(state: AddressState): void {
    const pair = ([from, to]: [Vec3, Vec3], text: (p: Vec3) => string) => `${text(from)};${text(to)}`;
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
    history.replaceState(null, "", `#${fields.join("&")}`);
}
