import { element, setText } from "./panel";
import type { Workbench } from "./workbench";

const sliderOf = (id: string) => 10 ** (Number(element<HTMLInputElement>(id).value) / 10);
const countOf = (id: string) => Math.max(1, Math.round(sliderOf(id)));
const mostCharacters = 2000;
const longestFrame = 0.1; // seconds

/** What happens frame by frame: searches that play, those who walk, and the picture. */
export class Movement {
    private frames: number[] = [];
    private lastFrame = 0;

    constructor(private readonly bench: Workbench) {
        requestAnimationFrame((time) => this.frame(time));
    }

    /** Expansions for each frame, for the searches. */
    get budget(): number {
        return countOf("budget");
    }

    walk(): void {
        const { running, form } = this.bench;
        if (!running) return;
        if (running.crowd.isOut) running.crowd.end();
        running.walker.toggle(running.queries.active, form);
    }

    walkCrowd(): void {
        const { running } = this.bench;
        if (!running) return;
        if (!running.crowd.isOut) running.walker.stop();
        const count = Number(element<HTMLInputElement>("crowdCount").value);
        running.crowd.toggle(Math.min(Math.max(Math.round(count) || 1, 1), mostCharacters));
    }

    showSliders(): void {
        setText("budgetText", this.budget.toLocaleString("en"));
        setText("crowdBudgetText", countOf("crowdBudget").toLocaleString("en"));
        this.show();
    }

    show(): void {
        this.bench.running?.walker.show(sliderOf("speed"));
        this.bench.running?.crowd.show();
    }

    private frame(time: number): void {
        const { bench } = this;
        const { running, view } = bench;
        const seconds = Math.min((time - this.lastFrame) / 1000, longestFrame);
        this.lastFrame = time;
        if (running?.queries.isPlaying) {
            running.queries.playFrame(this.budget);
            bench.showAll(running.queries.isPlaying);
        }
        bench.recording.frame(seconds);
        if (running?.walker.isWalking || running?.crowd.isWalking) {
            running.walker.frame(seconds, sliderOf("speed"), bench.palette);
            running.crowd.frame(seconds, countOf("crowdBudget"), bench.palette);
            this.show();
        }
        if (view.draw(time)) this.frames.push(time);
        this.frames = this.frames.filter((each) => time - each < 1000);
        setText("rate", this.frames.length > 5 ? `${this.frames.length} fps` : "");
        if (!bench.isDragging) bench.address.frame();
        requestAnimationFrame((next) => this.frame(next));
    }
}
