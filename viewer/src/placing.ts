import type { Point } from "zunopathfinder/external";
import { parsePoint, shortText } from "./format";
import { element, setText, showTab } from "./panel";
import type { Workbench } from "./workbench";

const noteFor = 6000; // milliseconds
const reachPart = 1 / 8; // of the mesh's size, that a click may be beside it

/** Starts and goals: from clicks, from the keyboard, and as numbers. */
export class Placing {
    private noteTimer = 0;

    constructor(private readonly bench: Workbench) {}

    /** The place that a click means; beside the mesh it says so. Null when nothing is near. */
    settle(point: Point): Point | null {
        const { world, queries } = this.bench.running!;
        this.say("");
        if (world.ground.findNode(point) !== null) return queries.tidy(point);
        if (!element<HTMLInputElement>("snap").checked) return point;
        const { min, max } = this.bench.open!.view.bounds;
        const reach = min.distanceTo(max) * reachPart;
        const nearest = world.ground.nearest(point, reach);
        const amount = shortText(Number((nearest?.distance ?? reach).toPrecision(2)));
        this.say(nearest ? `${amount} beside the mesh: the nearest place is taken` : `Nothing to stand on within ${amount} of this place`);
        return nearest && queries.tidy(nearest.position);
    }

    /** Start or goal where the middle of the picture is. */
    setInMiddle(end: "start" | "goal"): void {
        const { left, top, width, height } = element("scene").getBoundingClientRect();
        const pick = this.bench.view.pointer.pick({ clientX: left + width / 2, clientY: top + height / 2 });
        element("cross").hidden = false;
        const point = pick && this.bench.running ? this.settle(pick.point) : null;
        if (point) this.set(end, point);
    }

    /** Start or goal as somebody typed it, on the mesh or not. */
    type(end: "start" | "goal", field: HTMLInputElement): void {
        const point = parsePoint(field.value);
        if (!point) return this.bench.fail(`“${field.value}” is no place: three numbers x, y, z are`);
        this.bench.hideError();
        field.blur();
        if (this.bench.running) this.set(end, point);
    }

    /** Begins and ends at the places that are nearest to points beside the mesh. */
    useNearest(): void {
        const queries = this.bench.running?.queries;
        const { start, goal } = queries?.active?.explanation ?? {};
        if (!queries || !start || !goal) return;
        queries.setEnd("start", queries.tidy(start));
        queries.setEnd("goal", queries.tidy(goal));
    }

    /** A word about what was just done, for some seconds. */
    say(text: string): void {
        setText("note", text);
        clearTimeout(this.noteTimer);
        if (text) this.noteTimer = window.setTimeout(() => setText("note", ""), noteFor);
    }

    private set(end: "start" | "goal", point: Point): void {
        this.bench.running!.queries.setEnd(end, point);
        showTab("search");
    }
}
