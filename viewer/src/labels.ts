import * as THREE from "three";
import type { MeshView } from "./meshview";

const lineHeight = 13; // pixels
const gap = 4;

/** The ids of nodes, written over the picture; those that have no room give way. */
export class Labels {
    private readonly context: CanvasRenderingContext2D;
    isOn = false;
    colour = "#000";
    background = "#fff";

    constructor(readonly canvas: HTMLCanvasElement) {
        this.context = canvas.getContext("2d")!;
    }

    /** `isSeen` tells of a node's centre whether it is shown at all. */
    draw(meshView: MeshView | null, camera: THREE.Camera, ratio: number, isSeen: (node: number, centre: THREE.Vector3) => boolean): void {
        const { canvas, context } = this;
        context.clearRect(0, 0, canvas.width, canvas.height);
        if (!this.isOn || !meshView) return;
        context.font = `${11 * ratio}px ui-monospace, monospace`;
        context.textAlign = "center";
        context.textBaseline = "middle";
        context.fillStyle = this.colour;
        context.strokeStyle = this.background;
        context.lineWidth = 3 * ratio;
        context.lineJoin = "round";
        const digit = context.measureText("0").width;
        const taken = new Map<number, [number, number][]>(); // of each line: from and to
        const place = new THREE.Vector3();
        for (let node = 0; node < meshView.nodeCount; ++node) {
            const centre = meshView.centreOf(node);
            if (!isSeen(node, centre)) continue;
            place.copy(centre).project(camera);
            if (Math.abs(place.x) > 1 || Math.abs(place.y) > 1 || place.z > 1) continue;
            const x = ((place.x + 1) / 2) * canvas.width;
            const y = ((1 - place.y) / 2) * canvas.height;
            const text = String(node);
            const half = (digit * text.length) / 2 + gap * ratio;
            const line = Math.round(y / (lineHeight * ratio));
            const row = taken.get(line) ?? [];
            if (row.some(([from, to]) => x - half < to && x + half > from)) continue;
            row.push([x - half, x + half]);
            taken.set(line, row);
            context.strokeText(text, x, line * lineHeight * ratio);
            context.fillText(text, x, line * lineHeight * ratio);
        }
    }
}
