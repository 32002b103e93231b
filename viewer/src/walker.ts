import * as THREE from "three";
import { Characters } from "./characters";
import type { Engine, MeshDescription, Vec3 } from "./engine";
import { element, setText } from "./panel";
import type { Palette } from "./meshview";
import type { Search, StraightForm } from "./searches";
import type { View } from "./view";

/** A character that walks a found path, at a speed in units a second. */
export class Walker {
    isWalking = false;
    private search: Search | null = null;
    private form: StraightForm = "improved";
    private body: Characters | null = null;
    private walked = 0;
    private isThere = false;

    constructor(
        private readonly view: View,
        private readonly engine: Engine,
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
        this.search = this.body = null;
        this.isWalking = false;
    }

    /** Walks for so many seconds. */
    frame(seconds: number, speed: number, palette: Palette): void {
        if (!this.isWalking || !this.search || !this.body) return;
        const { point, walked, isThere } = this.engine.stepWalker(seconds * speed);
        this.walked += walked;
        this.isThere = isThere || walked === 0;
        if (this.isThere) this.isWalking = false;
        this.putAt(point, palette);
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
        if (!search.sendWalker(form)) return;
        this.search = search;
        this.form = form;
        this.walked = 0;
        this.isThere = false;
        this.isWalking = true;
        this.body = new Characters(1, this.mesh);
        this.view.setCharacters(this.body);
    }

    private putAt(point: Vec3, palette: Palette): void {
        this.body?.place(0, this.view.toScene(point), new THREE.Color(palette.walker));
        this.view.invalidate();
    }
}
