import { type Path, type Point, Reason, Result, type Search as PathSearch } from "zunopathfinder/external";
import { pathColour } from "./palette";
import { distanceOf } from "./stride";
import type { World } from "./world";

export type SearchState = "off mesh" | "running" | "found" | "no path";

export type StraightForm = "improved" | "plain" | "centres";

export interface Corners {
    points: Point[];
    length: number;
}

/** Why there is, or is not, a path. */
export interface Explanation {
    /** Sentences, a line each. */
    text: string;
    /** The places nearest to start and goal from which a search can begin. */
    start: Point | null;
    goal: Point | null;
    /** Where the islands of the two come nearest to each other, when they are two. */
    shores: [Point, Point] | null;
}

export function toPoints(numbers: Float32Array): Point[] {
    const points: Point[] = [];
    for (let i = 0; i < numbers.length; i += 3) points.push([numbers[i], numbers[i + 1], numbers[i + 2]]);
    return points;
}

function lengthOf(points: Point[]): number {
    return points.slice(1).reduce((sum, point, i) => sum + distanceOf(points[i], point), 0);
}

/** One search of the runtime's, and what is known of it. */
export class Search {
    state: SearchState = "running";
    expansions = 0;
    cost = 0;
    waypoints: Point[] = [];
    milliseconds = 0;
    /** The waypoints, as the runtime gives and takes them. */
    private path = new Float32Array();
    private readonly ways = new Map<StraightForm, Corners>();
    private reason: Explanation | null = null;
    private readonly search: PathSearch | null;

    constructor(
        private readonly world: World,
        readonly start: Point,
        readonly goal: Point,
        readonly colour: string,
    ) {
        const begin = performance.now();
        this.search = world.session.openSearch(start, goal);
        this.milliseconds = performance.now() - begin;
        if (!this.search) this.state = "off mesh";
    }

    get isRunning(): boolean {
        return this.state === "running";
    }

    /** Expands at most so many nodes. */
    run(budget: number): void {
        if (!this.search || !this.isRunning || budget === 0) return;
        const begin = performance.now();
        const result = this.search.run(budget);
        this.milliseconds += performance.now() - begin;
        if (result === Result.RUNNING) {
            this.expansions += budget;
            return;
        }
        if (result === Result.FOUND) this.readPath(this.search);
        else this.state = "no path";
        // each expansion closed one node, and none is opened again
        this.expansions = this.nodeStates().reduce((sum, state) => sum + (state === 2 ? 1 : 0), 0);
    }

    finish(): void {
        this.run(Infinity);
    }

    /** The way of a found path in a form, start and goal included. */
    wayIn(form: StraightForm): Corners {
        const known = this.ways.get(form);
        if (known) return known;
        const straight = form === "centres" ? null : this.straighten(form);
        const points = straight ? toPoints(straight.cornersView()) : [this.start, ...this.waypoints, this.goal];
        const way = { points, length: straight?.length() ?? lengthOf(points) };
        this.ways.set(form, way);
        return way;
    }

    /** Why there is no path. */
    get explanation(): Explanation {
        return (this.reason ??= this.explain());
    }

    /** The straight path of a found one, which holds until another one is made. */
    straighten(form: StraightForm): Path | null {
        return this.world.straighten(this.start, this.goal, this.path, form === "improved");
    }

    /** Of each node 0: not visited, 1: open, 2: closed. */
    nodeStates(): Uint8Array {
        return this.search ? this.world.nodeStates(this.search) : new Uint8Array();
    }

    close(): void {
        this.search?.dispose();
    }

    private readPath(search: PathSearch): void {
        this.state = "found";
        this.path = search.waypoints();
        this.waypoints = toPoints(this.path);
        this.cost = search.cost();
    }

    private explain(): Explanation {
        const { start, goal, world } = this;
        const { reason, text } = world.ground.explain(start, goal);
        const nearest = (point: Point) => world.ground.nearest(point)?.position ?? null;
        const shores = reason === Reason.OTHER_ISLAND ? world.shores(start, goal) : null;
        return { text, start: nearest(start), goal: nearest(goal), shores };
    }
}

/** All open searches, run side by side with one budget a frame, as a host would. */
export class SearchBoard {
    readonly all: Search[] = [];
    private colourCount = 0;

    constructor(private readonly world: World) {}

    open(start: Point, goal: Point, colour = pathColour(this.colourCount++)): Search {
        const search = new Search(this.world, start, goal, colour);
        this.all.push(search);
        return search;
    }

    /** Opens a search in the place of another. */
    replace(search: Search, start: Point, goal: Point): Search {
        search.close();
        const next = new Search(this.world, start, goal, search.colour);
        this.all[this.all.indexOf(search)] = next;
        return next;
    }

    close(search: Search): void {
        search.close();
        this.all.splice(this.all.indexOf(search), 1);
    }

    get isRunning(): boolean {
        return this.all.some((search) => search.isRunning);
    }

    /** Shares a frame's expansions out among the searches that still run. */
    runFrame(budget: number): void {
        const running = this.all.filter((search) => search.isRunning);
        running.forEach((search, i) => {
            const share = Math.floor(budget / running.length) + (i < budget % running.length ? 1 : 0);
            search.run(share);
        });
    }

    finish(): void {
        for (const search of this.all) search.finish();
    }
}
