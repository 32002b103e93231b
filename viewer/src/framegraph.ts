import type { Palette } from "./meshview";

interface Frame {
    spent: number;
    budget: number;
    queue: number;
}

const mostFrames = 146; // two pixels each
const cssOf = (colour: number) => `#${colour.toString(16).padStart(6, "0")}`;

/** The last frames: what each spent of its budget, and how many requests waited after it. */
export class FrameGraph {
    private frames: Frame[] = [];
    private readonly context: CanvasRenderingContext2D;

    constructor(private readonly canvas: HTMLCanvasElement) {
        this.context = canvas.getContext("2d")!;
    }

    add(frame: Frame): void {
        this.frames.push(frame);
        if (this.frames.length > mostFrames) this.frames.shift();
    }

    clear(): void {
        this.frames = [];
        this.context.clearRect(0, 0, this.canvas.width, this.canvas.height);
    }

    draw(palette: Palette): void {
        const { context, frames } = this;
        const { width, height } = this.canvas;
        const step = width / mostFrames;
        const mostSpent = Math.max(...frames.map(({ budget }) => budget), 1);
        const mostQueued = Math.max(...frames.map(({ queue }) => queue), 10);
        const room = height - 2;
        context.clearRect(0, 0, width, height);
        context.fillStyle = cssOf(palette.closed);
        frames.forEach(({ spent }, i) => context.fillRect(i * step, height - (spent / mostSpent) * room, step - 0.5, (spent / mostSpent) * room));
        const drawLine = (colour: number, valueOf: (frame: Frame) => number) => {
            context.strokeStyle = cssOf(colour);
            context.lineWidth = 2.5;
            context.beginPath();
            frames.forEach((frame, i) => context.lineTo((i + 0.5) * step, height - valueOf(frame) * room));
            context.stroke();
        };
        drawLine(palette.wall, ({ budget }) => budget / mostSpent);
        drawLine(palette.waiting, ({ queue }) => queue / mostQueued);
    }
}
