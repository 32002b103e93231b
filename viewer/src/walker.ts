import * as THREE from "three";
import type { Corridor, Point } from "zunopathfinder/external";
import { Characters } from "./characters";
import type { MeshDescription } from "./meshlook";
import type { Palette } from "./meshview";
import { element, setText } from "./panel";
import type { Search, StraightForm } from "./searches";
import { isAtGoal, stride } from "./stride";
import type { View } from "./view";
import type { World } from "./world";

/** A character that walks a found path, at a speed in units a second. */
export class Walker {
    isWalking = false;
    private search: Search | null = null;
    private corridor: Corridor | null = null;
    private form: StraightForm = "improved";
    private body: Characters | null = null;
    private walked = 0;
    private isThere = false;

    constructor(
        private readonly view: View,
        private readonly world: World,
        private readonly mesh: MeshDescription,
    ) {}

    get isOut(): boolean {
        return this.search !== null;
    }

    /** Walks on, stands still, or sets out on this path. */
    toggle(search: Search | null, form: StraightForm): void {
        if (this.isWalking) this.isWalking = false;
        else if (search && search === this.search && !this.isThere) this.isWalking = true;
        else if (search?.state === "found") this.setOut(search, form);
    }

    /** Forgets a path that is no longer looked at; one that took its place is walked instead. */
    keepTo(search: Search | null, form: StraightForm): void {
        if (!this.search || (search === this.search && form === this.form)) return;
        const wasWalking = this.isWalking;
        if (wasWalking && search?.state === "found") this.setOut(search, form);
        else if (!wasWalking || !search?.isRunning) this.stop();
    }

    stop(): void {
        if (this.body) this.view.setCharacters(null);
        this.corridor?.dispose();
        this.search = this.body = this.corridor = null;
        this.isWalking = false;
    }

    /** Walks for so many seconds. */
    frame(seconds: number, speed: number, palette: Palette): void {
        if (!this.isWalking || !this.corridor) return;
        this.walk(this.corridor, seconds * speed);
        if (this.isThere) this.isWalking = false;
        this.body?.place(0, this.view.toScene(this.corridor.state().position), new THREE.Color(palette.walker));
        this.view.invalidate();
    }

    show(speed: number): void {
        setText("walk", this.isWalking ? "Pause" : this.isThere && this.search ? "Walk again" : "Walk");
        setText("speedText", speed.toFixed(1));
        const length = this.search?.wayIn(this.form === "centres" ? "plain" : this.form).length ?? 0;
        const arrived = this.isThere ? ", arrived" : "";
        setText("walked", this.search ? `${this.walked.toFixed(1)} of ${length.toFixed(1)}, ${(this.walked / speed).toFixed(1)} s${arrived}` : "–");
        element("walked").dataset.there = String(this.isThere);
    }

    private setOut(search: Search, form: StraightForm): void {
        this.stop();
        const path = search.straighten(form);
        if (!path) return;
        const start = [...path.cornersView().subarray(0, 3)] as Point;
        this.corridor = this.world.ground.createCorridor({ node: this.world.ground.findNode(search.start)!, position: start });
        this.corridor.follow(path);
        this.search = search;
        this.form = form;
        this.walked = 0;
        this.isThere = false;
        this.isWalking = true;
        this.body = new Characters(1, this.mesh);
        this.view.setCharacters(this.body);
    }

    /** Walks so far, in steps that turn at each corner, or to the goal. */
    private walk(corridor: Corridor, distance: number): void {
        const { cubeSize } = this.mesh;
        const near = cubeSize / 8;
        let state = corridor.state();
        let rest = distance;
        for (let walked = 1; rest > 0 && walked > 0 && state.hasPath && !isAtGoal(state, near); rest -= walked) {
            ({ state, walked } = stride(corridor, state, Math.min(rest, cubeSize), near));
            this.walked += walked;
        }
        this.isThere = isAtGoal(state, near) || rest === distance;
    }
}
