import { centreOf, Engine, MeshDescription, Vec3 } from "./engine";
import type { Marker } from "./overlays";
import type { Ray } from "./rays";
import { Search, SearchBoard } from "./searches";

/** What clicks do: begin or end a path, begin or end a ray, or nothing. */
export type Tool = "path" | "ray" | "look";

/** What is asked of one world: searches, the one that is looked at, and a ray. */
export class Queries {
    readonly board: SearchBoard;
    active: Search | null = null;
    ray: Ray | null = null;
    /** The first of two clicks. */
    pendingStart: Vec3 | null = null;
    pendingRay: Vec3 | null = null;
    /** The next path gets a search of its own instead of the active one's place. */
    addsNext = false;
    isPlaying = false;

    constructor(
        private readonly engine: Engine,
        private readonly mesh: MeshDescription,
    ) {
        this.board = new SearchBoard(engine);
    }

    get all(): Search[] {
        return this.board.all;
    }

    click(tool: Tool, point: Vec3): void {
        if (tool === "path") {
            if (!this.pendingStart) this.pendingStart = point;
            else this.startSearch(this.pendingStart, point);
        } else if (!this.pendingRay) this.pendingRay = point;
        else this.traceRay(this.pendingRay, point);
    }

    /** Moves what a sign belongs to; returns the owner of the sign that takes its place. */
    drag(marker: Marker, point: Vec3): unknown {
        if (marker.owner instanceof Search) {
            const search = marker.owner;
            const [start, goal] = marker.kind === "start" ? [point, search.goal] : [search.start, point];
            this.active = this.board.replace(search, start, goal);
            this.active.finish();
            return this.active;
        }
        if (this.ray) {
            const { from, to } = this.ray;
            if (marker.kind === "rayStart") this.traceRay(point, to);
            else this.traceRay(from, point);
        }
        return marker.owner;
    }

    traceRay(from: Vec3, to: Vec3): void {
        this.pendingRay = null;
        this.ray = { from, to, hit: this.engine.traceRay(from, to) };
    }

    clearRay(): void {
        this.ray = this.pendingRay = null;
    }

    /** Forgets the first of two clicks. */
    cancel(): void {
        this.pendingStart = this.pendingRay = null;
        this.addsNext = false;
    }

    /** Opens searches and finishes them at once. */
    solve(searches: [Vec3, Vec3][]): void {
        for (const [start, goal] of searches) this.active = this.board.open(start, goal);
        this.board.finish();
    }

    /** Twenty searches between nodes picked at random. */
    addCrowd(): void {
        const nodeCount = this.mesh.firstCorners.length - 1;
        const pick = () => centreOf(this.mesh, Math.floor(Math.random() * nodeCount));
        for (let i = 0; i < 20; ++i) this.active = this.board.open(pick(), pick());
        this.isPlaying = true;
    }

    restart(): void {
        for (const search of [...this.all]) {
            const next = this.board.replace(search, search.start, search.goal);
            if (search === this.active) this.active = next;
        }
        this.isPlaying = false;
    }

    close(search: Search): void {
        this.board.close(search);
        if (this.active === search) this.active = this.all.at(-1) ?? null;
    }

    clear(): void {
        for (const search of [...this.all]) this.board.close(search);
        this.active = this.pendingStart = null;
        this.isPlaying = false;
    }

    /** What a frame of a host's would do. */
    playFrame(budget: number): void {
        this.board.runFrame(budget);
        this.isPlaying = this.board.isRunning;
    }

    step(budget: number): void {
        this.isPlaying = false;
        this.board.runFrame(budget);
    }

    finish(): void {
        this.isPlaying = false;
        this.board.finish();
    }

    togglePlay(): void {
        this.isPlaying = !this.isPlaying && this.board.isRunning;
    }

    private startSearch(start: Vec3, goal: Vec3): void {
        this.pendingStart = null;
        if (this.active && !this.addsNext) this.active = this.board.replace(this.active, start, goal);
        else this.active = this.board.open(start, goal);
        this.addsNext = false;
        this.isPlaying = true;
    }
}
