import { type Corridor, type CorridorState, type Path, type Place, type Point, Result, type Scheduler, type SchedulerFigures } from "zunopathfinder/external";
import { distanceOf, isAtGoal, stride } from "./stride";
import type { World } from "./world";

export const framesPerSecond = 30;
const speed = 1.6; // units a second
const nearGoal = 0.3;
const nearCorner = 0.2;
const mostTries = 100; // for a place on the largest island

/** One who walks, waits for an answer (`request`), or rests for some frames. */
class Pedestrian {
    state: CorridorState;
    request = 0;
    rest = 0;

    constructor(readonly corridor: Corridor) {
        this.state = corridor.state();
    }
}

/** Where a path goes by the centres of its nodes: how long that is. */
function lengthByCentres(start: Point, waypoints: Float32Array, goal: Point): number {
    let length = 0;
    let last: ArrayLike<number> = start;
    for (let i = 0; i < waypoints.length; i += 3) {
        const next = waypoints.subarray(i, i + 3);
        length += distanceOf(last, next);
        last = next;
    }
    return length + distanceOf(last, goal);
}

/**
 * Characters that walk from place to place on the largest island: each asks the scheduler for a path,
 * straightens what it is given, follows it, rests at its goal for a moment, and goes on. Now and then
 * one wants to get where no path leads. The same seed gives the same walks.
 */
export class Population {
    readonly all: Pedestrian[];
    goalsReached = 0;
    distance = 0;
    centresLength = 0; // of all paths so far
    straightLength = 0;
    private readonly scheduler: Scheduler;
    private readonly path: Path;

    constructor(private readonly world: World, count: number, private seed: number) {
        this.scheduler = world.session.createScheduler();
        this.path = world.ground.createPath();
        this.all = Array.from({ length: count }, () => new Pedestrian(world.ground.createCorridor(this.pick(true))));
        for (const each of this.all) this.ask(each, this.pickGoal());
    }

    get figures(): SchedulerFigures {
        return this.scheduler.figures();
    }

    /** A frame's searches, within the budget, and a frame's steps. Returns the expansions that were charged. */
    frame(budget: number): number {
        this.scheduler.advance(budget);
        for (const each of this.all) {
            if (each.request) this.takeAnswer(each);
            if (each.rest) {
                if (--each.rest === 0) this.setOut(each);
            } else if (each.state.hasPath) this.step(each);
        }
        return this.figures.frameExpansions;
    }

    dispose(): void {
        for (const { corridor } of this.all) corridor.dispose();
        this.path.dispose();
        this.scheduler.dispose();
    }

    /** From 0 to below `limit`, by chance. */
    private chance(limit: number): number {
        this.seed = (Math.imul(this.seed, 1664525) + 1013904223) >>> 0;
        return Math.floor((this.seed / 2 ** 32) * limit);
    }

    private pick(isMainland: boolean): Place {
        const { ground } = this.world;
        let place: Place | null = null;
        for (let i = 0; i < mostTries; ++i) {
            place = ground.random(this.chance(2 ** 32));
            if (!place || !isMainland || ground.island(place.node) === 0) break;
        }
        return place ?? { node: 0, position: [...ground.outline(0).subarray(0, 3)] as Point };
    }

    /** A place to go to; now and then on an island apart, or far above the ground. */
    private pickGoal(): Point {
        if (this.chance(60) > 0) return this.pick(this.chance(10) > 0).position;
        const [x, y, z] = this.pick(true).position;
        return [x, y + 1000, z];
    }

    private setOut(each: Pedestrian): void {
        each.corridor.place(each.state); // without the path that led here
        each.state = each.corridor.state();
        this.ask(each, this.pickGoal());
    }

    private ask(each: Pedestrian, goal: Point): void {
        const request = { start: each.state.position, goal };
        if (each.request) this.scheduler.change(each.request, request);
        else each.request = this.scheduler.add(request);
    }

    private takeAnswer(each: Pedestrian): void {
        const answer = this.scheduler.take(each.request);
        if (!answer) return;
        each.request = 0;
        const { start, goal, waypoints } = answer;
        if (answer.result !== Result.FOUND || !this.path.straighten(start, goal, waypoints) || !each.corridor.follow(this.path)) {
            each.rest = framesPerSecond; // somewhere else, then
            return;
        }
        each.state = each.corridor.state();
        this.centresLength += lengthByCentres(start, waypoints, goal);
        this.straightLength += this.path.length();
    }

    private step(each: Pedestrian): void {
        const { state, walked } = stride(each.corridor, each.state, speed / framesPerSecond, nearCorner);
        each.state = state;
        this.distance += walked;
        if (isAtGoal(state, nearGoal)) {
            ++this.goalsReached;
            each.rest = framesPerSecond / 2 + this.chance(2 * framesPerSecond);
        } else if (state.needsSearch && !each.request) this.ask(each, state.goal.position);
    }
}
