import * as THREE from "three";
import { Characters } from "./characters";
import { FrameGraph } from "./framegraph";
import type { MeshDescription } from "./meshlook";
import type { Palette } from "./meshview";
import { element, setText, showRows } from "./panel";
import { framesPerSecond, Population } from "./population";
import type { View } from "./view";
import type { World } from "./world";

const seed = 7;

/** Characters that walk from place to place, and share a budget of expansions for each frame. */
export class Crowd {
    isWalking = false;
    private population: Population | null = null;
    private body: Characters | null = null;
    private readonly graph = new FrameGraph(element<HTMLCanvasElement>("frameGraph"));
    private rest = 0; // seconds that no frame was made of yet
    private searchTime = 0;
    private frames = 0;

    constructor(
        private readonly view: View,
        private readonly world: World,
        private readonly mesh: MeshDescription,
    ) {}

    /** What the scheduler has done, and how far all have walked. */
    get figures() {
        return this.population && { ...this.population.figures, distance: this.population.distance };
    }

    get isOut(): boolean {
        return this.population !== null;
    }

    toggle(count: number): void {
        if (this.isOut) this.isWalking = !this.isWalking;
        else this.start(count);
    }

    start(count: number): void {
        this.end();
        this.population = new Population(this.world, count, seed);
        this.body = new Characters(count, this.mesh);
        this.view.setCharacters(this.body);
        this.isWalking = true;
    }

    end(): void {
        if (this.population) {
            this.population.dispose();
            this.view.setCharacters(null);
        }
        this.population = this.body = null;
        this.isWalking = false;
        this.frames = this.searchTime = this.rest = 0;
        this.graph.clear();
    }

    /** Lets so much time pass. A page that was away does not catch up. */
    frame(seconds: number, budget: number, palette: Palette): void {
        const { population } = this;
        if (!this.isWalking || !population) return;
        this.rest = Math.min(this.rest + seconds, 3 / framesPerSecond);
        for (; this.rest >= 1 / framesPerSecond; this.rest -= 1 / framesPerSecond) this.step(population, budget);
        const [walks, waits] = [new THREE.Color(palette.walker), new THREE.Color(palette.waiting)];
        population.all.forEach(({ state, request }, i) => this.body!.place(i, this.view.toScene(state.position), request ? waits : walks));
        this.view.invalidate();
        this.graph.draw(palette);
    }

    show(): void {
        setText("crowdWalk", this.isWalking ? "Pause" : this.isOut ? "Go on" : "Start");
        element<HTMLButtonElement>("crowdEnd").disabled = !this.isOut;
        const { population } = this;
        if (!population) return showRows("crowdFigures", []);
        const { figures, goalsReached, distance, centresLength, straightLength } = population;
        const answers = figures.found + figures.noPath + figures.offMesh;
        const ratio = straightLength > 0 ? centresLength / straightLength : 0;
        showRows("crowdFigures", [
            ["Queue", `${figures.open}, at most ${figures.longestQueue}`],
            ["Answers", `${answers}: ${figures.noPath} no path, ${figures.offMesh} off mesh`],
            ["Frames waited", answers ? `${(figures.framesWaited / answers).toFixed(1)}, at most ${figures.mostFramesWaited}` : "–"],
            ["Goals reached", String(goalsReached)],
            ["Walked", `${distance.toFixed(0)} in ${(figures.frames / framesPerSecond).toFixed(0)} s`],
            ["By centres", ratio ? `${ratio.toFixed(2)} times as long` : "–"],
            ["A frame takes", `${(this.searchTime / Math.max(this.frames, 1)).toFixed(2)} ms`],
        ]);
    }

    private step(population: Population, budget: number): void {
        const begin = performance.now();
        const spent = population.frame(budget);
        this.searchTime += performance.now() - begin;
        ++this.frames;
        this.graph.add({ spent, budget, queue: population.figures.open });
    }
}
