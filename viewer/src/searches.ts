import { Engine, SearchResult, Vec3 } from "./engine";

export type SearchState = "off mesh" | "running" | "found" | "no path";

/** One search of the runtime's, and what is known of it. */
export class Search {
    state: SearchState = "running";
    expansions = 0;
    cost = 0;
    waypoints: Vec3[] = [];
    milliseconds = 0;
    private readonly id: number;

    constructor(
        private readonly engine: Engine,
        readonly start: Vec3,
        readonly goal: Vec3,
        readonly colour: string,
    ) {
        const begin = performance.now();
        this.id = engine.openSearch(start, goal);
        this.milliseconds = performance.now() - begin;
        if (this.id < 0) this.state = "off mesh";
    }

    get isRunning(): boolean {
        return this.state === "running";
    }

    /** Expands at most so many nodes. */
    run(budget: number): void {
        if (!this.isRunning || budget === 0) return;
        const begin = performance.now();
        const result = this.engine.runSearch(this.id, budget);
        this.milliseconds += performance.now() - begin;
        if (result === SearchResult.Running) {
            this.expansions += budget;
            return;
        }
        if (result === SearchResult.Found) this.readPath();
        else this.state = "no path";
        // each expansion closed one node, and none is opened again
        this.expansions = this.nodeStates().reduce((sum, state) => sum + (state === 2 ? 1 : 0), 0);
    }

    finish(): void {
        this.run(0xffffffff);
    }

    /** Of each node 0: not visited, 1: open, 2: closed. */
    nodeStates(): Uint8Array {
        return this.id < 0 ? new Uint8Array() : this.engine.nodeStates(this.id);
    }

    close(): void {
        if (this.id >= 0) this.engine.closeSearch(this.id);
    }

    private readPath(): void {
        this.state = "found";
        const points = this.engine.takeWaypoints(this.id);
        for (let i = 0; i < points.length; i += 3)
            this.waypoints.push([points[i], points[i + 1], points[i + 2]]);
        this.cost = this.engine.pathCost(this.id);
    }
}

// none that nodes have while a search goes on
const colours = ["#f76707", "#e64980", "#e8a200", "#ae3ec9", "#0c8599", "#868e96"];

/** All open searches, run side by side with one budget a frame, as a host would. */
export class SearchBoard {
    readonly all: Search[] = [];
    private colourCount = 0;

    constructor(private readonly engine: Engine) {}

    open(start: Vec3, goal: Vec3): Search {
        const search = new Search(this.engine, start, goal, colours[this.colourCount++ % colours.length]);
        this.all.push(search);
        return search;
    }

    /** Opens a search in the place of another. */
    replace(search: Search, start: Vec3, goal: Vec3): Search {
        search.close();
        const next = new Search(this.engine, start, goal, search.colour);
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
