import type { Point, Replay } from "zunopathfinder/external";
import { liftToMesh, type MeshDescription } from "./meshlook";
import type { Ray } from "./rays";
import type { RecordedCalls } from "./recordedcalls";

enum CallKind {
    Start = 1,
    Close,
    InitSearch,
    RunSearch,
    NextWaypoint,
    PathCost,
    CloseSearch,
    IsBlocked,
    TraceRay2D,
    TraceRay3D,
    GroundHeight,
}

interface RecordedSearch {
    start: Point;
    goal: Point;
    waypoints: Point[];
}

/** What is drawn of a recording, up to a call. */
export interface ShownCalls {
    searches: (RecordedSearch & { isCurrent: boolean })[];
    /** The paths that were answered last. */
    answered: Point[][];
    ray: Ray | null;
    point: Point | null;
}

const mostAnswered = 12;

/** A host's calls, gone through one by one. */
export class Recording {
    /** So many calls were made. */
    at = 0;
    private searches = new Map<number, RecordedSearch>();
    private answered: Point[][] = [];

    constructor(
        readonly name: string,
        private readonly mesh: MeshDescription,
        private readonly calls: RecordedCalls,
        readonly outcome: Replay,
    ) {}

    get count(): number {
        return this.calls.kinds.length;
    }

    get isWhole(): boolean {
        return this.calls.isWhole;
    }

    moveTo(at: number): void {
        const target = Math.min(Math.max(Math.round(at), 0), this.count);
        if (target < this.at) {
            this.at = 0;
            this.forget();
        }
        for (; this.at < target; ++this.at) this.follow(this.at);
    }

    textOf(index: number): string {
        return this.calls.textOf(index);
    }

    get shown(): ShownCalls {
        const last = this.at - 1;
        const id = last >= 0 ? this.idOf(last) : -1;
        const searches = [...this.searches].map(([key, search]) => ({ ...search, isCurrent: key === id }));
        return { searches, answered: this.answered, ray: this.rayOf(last), point: this.pointOf(last) };
    }

    private forget(): void {
        this.searches.clear();
        this.answered = [];
    }

    /** The search that a call is about. */
    private idOf(index: number): number {
        const { kinds, ids, answers } = this.calls;
        if (kinds[index] === CallKind.InitSearch) return answers[index];
        return kinds[index] >= CallKind.RunSearch && kinds[index] <= CallKind.CloseSearch ? ids[index] : -1;
    }

    private follow(index: number): void {
        const { kinds, answers, answerFloats } = this.calls;
        const id = this.idOf(index);
        const search = this.searches.get(id);
        switch (kinds[index]) {
            case CallKind.Start:
            case CallKind.Close:
                this.forget();
                break;
            case CallKind.InitSearch:
                if (id >= 0) this.searches.set(id, { start: this.argumentsOf(index, 0), goal: this.argumentsOf(index, 3), waypoints: [] });
                break;
            case CallKind.NextWaypoint:
                if (answers[index]) search?.waypoints.push([...answerFloats.subarray(index * 4, index * 4 + 3)] as Point);
                break;
            case CallKind.CloseSearch:
                if (search?.waypoints.length) this.answered.push([search.start, ...search.waypoints, search.goal]);
                if (this.answered.length > mostAnswered) this.answered.shift();
                this.searches.delete(id);
                break;
        }
    }

    private argumentsOf(index: number, first: number): Point {
        return [...this.calls.arguments.subarray(index * 6 + first, index * 6 + first + 3)] as Point;
    }

    /** A position in the plane, on the lowest floor. */
    private positionOf(index: number, first: number): Point {
        const [a, b] = this.argumentsOf(index, first);
        return liftToMesh(this.mesh, [a, b]);
    }

    private rayOf(index: number): Ray | null {
        const hit = this.calls.answerFloats[index * 4];
        if (this.calls.kinds[index] === CallKind.TraceRay2D) return { from: this.positionOf(index, 0), to: this.positionOf(index, 2), hit };
        if (this.calls.kinds[index] === CallKind.TraceRay3D) return { from: this.argumentsOf(index, 0), to: this.argumentsOf(index, 3), hit };
        return null;
    }

    private pointOf(index: number): Point | null {
        const kind = this.calls.kinds[index];
        return kind === CallKind.IsBlocked || kind === CallKind.GroundHeight ? this.positionOf(index, 0) : null;
    }
}
