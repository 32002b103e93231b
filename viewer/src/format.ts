import type { Point } from "zunopathfinder/external";

/** The shortest text that a `float` of the same bits is read from. */
export function floatText(value: number): string {
    for (let digits = 1; digits < 9; ++digits) {
        const text = value.toPrecision(digits);
        if (Math.fround(Number(text)) === Math.fround(value)) return String(Number(text));
    }
    return String(Number(value.toPrecision(9)));
}

export function pointText(point: Point): string {
    return point.map(floatText).join(",");
}

/** A number for people: three digits behind the point at most. */
export function shortText(value: number): string {
    return String(Number(value.toFixed(3)));
}

/** Three numbers with commas or spaces between them. */
export function parsePoint(text: string | null): Point | null {
    const numbers = (text ?? "").trim().split(/[\s,;]+/).map(Number);
    return text?.trim() && numbers.length === 3 && numbers.every((value) => Number.isFinite(Math.fround(value)))
        ? (numbers.map(Math.fround) as Point)
        : null;
}

export function byteText(bytes: number): string {
    if (bytes < 1e4) return `${bytes} B`;
    return bytes < 1e7 ? `${(bytes / 1e3).toFixed(0)} kB` : `${(bytes / 1e6).toFixed(1)} MB`;
}
