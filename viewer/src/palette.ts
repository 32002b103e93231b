import type { Palette } from "./meshview";

export const lightPalette: Palette = {
    background: 0xf3f5f7,
    lowFloor: 0xd9d3c1,
    highFloor: 0xf0a35a,
    islands: [0x9fb4cc, 0xb7a6cf, 0xa5c4b4, 0xcfa9b5],
    link: 0xffffff,
    wall: 0x3f4650,
    open: 0x2fb344,
    closed: 0x4c8fe0,
    path: 0x1565c0,
    mark: 0xe03131,
    blocked: 0xc92a2a,
    walker: 0x7b1fa2,
    waiting: 0xe8590c,
};

export const darkPalette: Palette = {
    background: 0x14181d,
    lowFloor: 0x4a4f57,
    highFloor: 0xb36a2b,
    islands: [0x4c637d, 0x5f4f78, 0x4b6b5b, 0x784f5d],
    link: 0x9aa4b0,
    wall: 0xe8ecf1,
    open: 0x40c057,
    closed: 0x2f6fbf,
    path: 0x74c0fc,
    mark: 0xff6b6b,
    blocked: 0xff6b6b,
    walker: 0xe599f7,
    waiting: 0xffa94d,
};

// none that nodes have while a search goes on
const firstPaths = ["#f76707", "#e64980", "#e8a200", "#ae3ec9", "#0c8599", "#868e96"];

/** The colour of the n-th path, told apart from those before it. */
export function pathColour(index: number): string {
    if (index < firstPaths.length) return firstPaths[index];
    // turned by the golden angle, around the greens and blues of open and closed nodes
    const turn = (index * 0.618034) % 1;
    const hue = turn < 0.35 ? turn * 240 : turn < 0.45 ? 165 + (turn - 0.35) * 200 : 250 + (turn - 0.45) * 200;
    return `hsl(${Math.round(hue)}, 75%, ${index % 2 ? 42 : 56}%)`;
}
