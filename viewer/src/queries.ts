import type { Point } from "zunopathfinder/external";
import { centreOf, type MeshDescription } from "./meshlook";
import type { Marker } from "./overlays";
import type { Ray } from "./rays";
import { Search, SearchBoard } from "./searches";
import type { World } from "./world";

/** What clicks do: begin or end a path, begin or end a ray, or nothing. */
export type Tool = "path" | "ray" | "look";

/** What there was before something was closed or replaced. */
interface Memory {
    searches: { start: Point; goal: Point; colour: string }[];
    ray: Ray | null;
}

const longestMemory = 50;

/** What is asked of one world: searches, the one that is looked at, and a ray. */
export class Queries {
    readonly board: SearchBoard;
    active: Search | null = null;
    ray: Ray | null = null;
    /** The first of two clicks. */
    pendingStart: Point | null = null;
    pendingRay: Point | null = null;
    /** The next path gets a search of its own instead of the active one's place. */
    addsNext = false;
    isPlaying = false;
    private readonly memories: Memory[] = [];

    constructor(
        private readonly world: World,
        private readonly mesh: MeshDescription,
    ) {
        this.board = new SearchBoard(world);
    }

    get all(): Search[] {
        return this.board.all;
    }

    get canUndo(): boolean {
        return this.memories.length > 0;
    }

    click(tool: Tool, point: Point): void {
        if (tool === "path") {
            if (!this.pendingStart) this.pendingStart = point;
            else this.startSearch(this.pendingStart, point);
        } else if (!this.pendingRay) this.pendingRay = point;
        else {
            this.remember();
            this.traceRay(this.pendingRay, point);
        }
    }

    /** Gives the path, or the one that begins, a start or a goal; the rest is as it was. */
    setEnd(end: "start" | "goal", point: Point): void {
        const search = this.addsNext ? null : this.active;
        if (search && !this.pendingStart) {
            this.remember();
            this.active = this.board.replace(search, end === "start" ? point : search.start, end === "goal" ? point : search.goal);
            this.active.finish();
        } else if (end === "start") this.pendingStart = point;
        else if (this.pendingStart) this.startSearch(this.pendingStart, point);
    }

    /** Keeps what there is, for `undo`. */
    remember(): void {
        this.memories.push({ searches: this.all.map(({ start, goal, colour }) => ({ start, goal, colour })), ray: this.ray });
        if (this.memories.length > longestMemory) this.memories.shift();
    }

    /** Brings back what there was before the last change. */
    undo(): void {
        const memory = this.memories.pop();
        if (!memory) return;
        this.dropAll();
        for (const { start, goal, colour } of memory.searches) this.active = this.board.open(start, goal, colour);
        this.board.finish();
        this.ray = memory.ray;
    }

    /** Asks for these alone, if they are others than those that there are. */
    replaceAll(searches: [Point, Point][], ray: [Point, Point] | null): void {
        const isSame = searches.length === this.all.length &&
            searches.every(([start, goal], i) => String(start) === String(this.all[i].start) && String(goal) === String(this.all[i].goal));
        if (!isSame) {
            if (this.all.length) this.remember();
            this.dropAll();
            this.solve(searches);
        }
        this.ray = null;
        if (ray) this.traceRay(...ray);
    }

    /** Moves what a sign belongs to; returns the owner of the sign that takes its place. */
    drag(marker: Marker, point: Point): unknown {
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

    traceRay(from: Point, to: Point): void {
        this.pendingRay = null;
        this.ray = { from, to, hit: this.world.session.traceRayInSpace(from, to) ?? -1 };
    }

    clearRay(): void {
        if (this.ray) this.remember();
        this.ray = this.pendingRay = null;
    }

    /** Forgets the first of two clicks. */
    cancel(): void {
        this.pendingStart = this.pendingRay = null;
        this.addsNext = false;
    }

    /** Opens searches and finishes them at once. */
    solve(searches: [Point, Point][]): void {
        for (const [start, goal] of searches) this.active = this.board.open(start, goal);
        this.board.finish();
    }

    /** Twenty searches between nodes picked at random. */
    addTwenty(): void {
        this.remember();
        const nodeCount = this.mesh.firstCorners.length - 1;
        const pick = () => this.tidy(centreOf(this.mesh, Math.floor(Math.random() * nodeCount)));
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
        this.remember();
        this.board.close(search);
        if (this.active === search) this.active = this.all.at(-1) ?? null;
    }

    clear(): void {
        this.remember();
        this.dropAll();
    }

    /** The point in as few digits as people need, where it stands on the same node then. */
    tidy(point: Point): Point {
        const digits = Math.min(Math.max(-Math.floor(Math.log10(this.mesh.cubeSize / 20)), 0), 20);
        const rounded = point.map((value) => Math.fround(Number(value.toFixed(digits)))) as Point;
        const { ground } = this.world;
        return ground.findNode(rounded) === ground.findNode(point) ? rounded : point;
    }

    private dropAll(): void {
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

    private startSearch(start: Point, goal: Point): void {
        this.remember();
        this.pendingStart = null;
        if (this.active && !this.addsNext) this.active = this.board.replace(this.active, start, goal);
        else this.active = this.board.open(start, goal);
        this.addsNext = false;
        this.isPlaying = true;
    }
}
