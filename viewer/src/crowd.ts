import * as THREE from "three";
import { Characters } from "./characters";
import type { Engine, MeshDescription } from "./engine";
import { FrameGraph } from "./framegraph";
import type { Palette } from "./meshview";
import { element, setText, showRows } from "./panel";
import type { View } from "./view";

const framesPerSecond = 30; // of those who walk
const speed = 1.6; // units a second

/** Characters that walk from place to place, and share a budget of expansions for each frame. */
export class Crowd {
    isWalking = false;
    private body: Characters | null = null;
    private readonly graph = new FrameGraph(element<HTMLCanvasElement>("frameGraph"));
    private rest = 0; // seconds that no frame was made of yet
    private searchTime = 0;
    private frames = 0;

    constructor(
        private readonly view: View,
        private readonly engine: Engine,
        private readonly mesh: MeshDescription,
    ) {}

    get isOut(): boolean {
        return this.body !== null;
    }

    toggle(count: number): void {
        if (this.isOut) this.isWalking = !this.isWalking;
        else this.start(count);
    }

    start(count: number): void {
        this.end();
        this.engine.startCrowd(count, 7, speed);
        this.body = new Characters(count, this.mesh);
        this.view.setCharacters(this.body);
        this.isWalking = true;
    }

    end(): void {
        if (this.body) {
            this.engine.endCrowd();
            this.view.setCharacters(null);
        }
        this.body = null;
        this.isWalking = false;
        this.frames = this.searchTime = this.rest = 0;
        this.graph.clear();
    }

    /** Lets so much time pass. A page that was away does not catch up. */
    frame(seconds: number, budget: number, palette: Palette): void {
        if (!this.isWalking || !this.body) return;
        this.rest = Math.min(this.rest + seconds, 3 / framesPerSecond);
        for (; this.rest >= 1 / framesPerSecond; this.rest -= 1 / framesPerSecond) this.step(budget);
        const places = this.engine.crowdPlaces();
        const colours = [new THREE.Color(palette.walker), new THREE.Color(palette.waiting)];
        for (let i = 0; i * 4 < places.length; ++i)
            this.body.place(i, this.view.toScene([places[i * 4], places[i * 4 + 1], places[i * 4 + 2]]), colours[places[i * 4 + 3]]);
        this.view.invalidate();
        this.graph.draw(palette);
    }

    show(): void {
        setText("crowdWalk", this.isWalking ? "Pause" : this.isOut ? "Go on" : "Start");
        element<HTMLButtonElement>("crowdEnd").disabled = !this.isOut;
        if (!this.isOut) return showRows("crowdFigures", []);
        const figures = this.engine.crowdFigures();
        const answers = figures.found + figures.noPath + figures.offMesh;
        const ratio = figures.straightLength > 0 ? figures.centresLength / figures.straightLength : 0;
        showRows("crowdFigures", [
            ["Queue", `${figures.queue}, at most ${figures.longestQueue}`],
            ["Answers", `${answers}: ${figures.noPath} no path, ${figures.offMesh} off mesh`],
            ["Frames waited", answers ? `${(figures.framesWaited / answers).toFixed(1)}, at most ${figures.mostFramesWaited}` : "–"],
            ["Goals reached", String(figures.goalsReached)],
            ["Walked", `${figures.distance.toFixed(0)} in ${(figures.frames / framesPerSecond).toFixed(0)} s`],
            ["By centres", ratio ? `${ratio.toFixed(2)} times as long` : "–"],
            ["A frame takes", `${(this.searchTime / Math.max(this.frames, 1)).toFixed(2)} ms`],
        ]);
    }

    private step(budget: number): void {
        const begin = performance.now();
        const spent = this.engine.runCrowdFrame(budget);
        this.searchTime += performance.now() - begin;
        ++this.frames;
        this.graph.add({ spent, budget, queue: this.engine.crowdFigures().queue });
    }
}
