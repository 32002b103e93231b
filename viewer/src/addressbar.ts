import { AddressState, readAddress, writeAddress } from "./address";
import { showTab } from "./panel";
import type { Workbench } from "./workbench";

const mostSearches = 30;
const delay = 200; // milliseconds: browsers refuse an address that changes with every frame

/** Keeps the page's address to what is seen, and shows what an address tells. */
export class AddressBar {
    /** What an address told about a file that is not open yet. */
    awaited: AddressState | null = null;
    private isStale = false;
    private following = 0; // addresses that are being opened
    private timer = 0;
    private known = location.hash;

    constructor(private readonly bench: Workbench) {}

    /** Something changed that an address tells. */
    touch(): void {
        this.isStale = true;
    }

    /** Writes the address soon, if it is stale. */
    frame(): void {
        if (!this.isStale || this.following || !this.bench.open) return;
        this.isStale = false;
        clearTimeout(this.timer);
        this.timer = window.setTimeout(() => this.write(), delay);
    }

    /** Shows what the page's address tells; what belongs to a file waits for that file. */
    async follow(): Promise<void> {
        clearTimeout(this.timer);
        const { bench } = this;
        this.known = location.hash;
        const state = readAddress();
        const isOpen = bench.open !== null && (state.sample ?? state.file) === bench.open.name;
        this.awaited = state.file && !state.sample && !isOpen ? state : null;
        if (this.awaited) return bench.showAll();
        const sample = state.sample ?? Object.keys(zunoSamples)[0];
        ++this.following; // what is open meanwhile must not take the address back
        if (!isOpen) await bench.opener.openSample(sample);
        --this.following;
        if (isOpen || bench.open?.sample === sample) this.apply(state);
    }

    /** Shows what waited for the file that is open now. */
    applyAwaited(): void {
        if (this.awaited && this.awaited.file === this.bench.open?.name) this.apply(this.awaited);
    }

    private write(): void {
        if (!this.state || location.hash !== this.known) return; // another one was just gone to
        writeAddress(this.state);
        this.known = location.hash;
    }

    /** What is seen now; null when nothing is open. */
    get state(): AddressState | null {
        if (!this.bench.open) return null;
        const { view, floors, form, showsGrid, showsLabels, open: { sample, name, running } } = this.bench;
        const ray = running?.queries.ray;
        return {
            sample,
            file: sample ? null : name,
            searches: (running?.queries.all ?? []).slice(0, mostSearches).map(({ start, goal }) => [start, goal]),
            ray: ray ? [ray.from, ray.to] : null,
            camera: view.eye.state,
            isTopView: view.eye.isTopView,
            showsGrid,
            showsLabels,
            form,
            cut: floors.cut,
        };
    }

    apply(state: AddressState): void {
        const { bench } = this;
        this.awaited = null;
        if (!bench.running) return;
        bench.form = state.form;
        bench.running.queries.replaceAll(state.searches, state.ray);
        if (state.searches.length || state.ray) showTab(state.searches.length ? "search" : "ray");
        if (state.isTopView !== bench.view.eye.isTopView) bench.view.eye.setTopView(state.isTopView);
        if (state.camera) bench.view.eye.state = state.camera;
        bench.floors.cutAt(state.cut);
        bench.setLabels(state.showsLabels);
        bench.setGrid(state.showsGrid);
        bench.showAll();
    }
}
