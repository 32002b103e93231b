import { AddressState, readAddress, writeAddress } from "./address";
import { connectControls } from "./commands";
import { Vec3 } from "./engine";
import { Floors } from "./floors";
import { byteText } from "./format";
import { OpenMesh, openMesh, unpackSample } from "./meshes";
import type { Palette } from "./meshview";
import { resultsOf, scriptText } from "./outputs";
import { makeGridPicture, Marker } from "./overlays";
import { darkPalette, lightPalette } from "./palette";
import { element, save, setPressed, setText, showDefects, showFigures, showMesh, showSearches, showTab } from "./panel";
import { Placing } from "./placing";
import type { Pick } from "./pointer";
import type { Tool } from "./queries";
import { showRay } from "./rays";
import { RecordingPanel } from "./recordingpanel";
import { isRecording, replayRecording } from "./replay";
import type { Search, StraightForm } from "./searches";
import { showSigns } from "./signs";
import { showColours, showControls, showPointer } from "./status";
import { View } from "./view";

const mostGridCells = 4e6;

const sliderOf = (id: string) => 10 ** (Number(element<HTMLInputElement>(id).value) / 10);
const messageOf = (error: unknown) => (error instanceof Error ? error.message.replace(/^\/mesh: /, "") : String(error));

/** The page: what is open, what is chosen, and what the controls do with it. */
export class Workbench {
    readonly view: View;
    readonly floors: Floors;
    readonly recording: RecordingPanel;
    readonly placing = new Placing(this);
    open: OpenMesh | null = null;
    showsGrid = false;
    showsLabels = false;
    isDark = matchMedia("(prefers-color-scheme: dark)").matches;
    /** Where the pointer was last on the mesh. */
    lastPoint: Vec3 | null = null;
    private tool: Tool = "path";
    private chosenForm: StraightForm = "improved";
    private focus: number | null = null;
    private frames: number[] = [];
    private lastFrame = 0;
    private timings: [string, string][] = [];
    private openings = 0;
    private isDragging = false;
    private isAddressStale = false;
    private addressTimer = 0;
    /** What an address told about a file that is not open yet. */
    private awaited: AddressState | null = null;

    constructor() {
        this.view = new View(element<HTMLCanvasElement>("scene"), element<HTMLCanvasElement>("names"), {
            onHover: (pick) => this.hover(pick),
            onClick: (pick) => this.click(pick),
            onDrag: (marker, pick, isLast) => this.drag(marker, pick, isLast),
            onCameraMoved: () => (this.isAddressStale = true),
        });
        this.floors = new Floors(this.view, () => this.showAll(true));
        this.recording = new RecordingPanel(() => this.showAll(true));
        const samples = element<HTMLSelectElement>("sample");
        samples.add(new Option("–", ""));
        for (const name of Object.keys(zunoSamples)) samples.add(new Option(name, name));
        connectControls(this);
        this.setTheme(this.isDark);
        this.showSliders();
        this.showAll();
        requestAnimationFrame((time) => this.frame(time));
    }

    private get palette(): Palette {
        return this.isDark ? darkPalette : lightPalette;
    }

    /** What is open, if a world runs over it. */
    get world(): OpenMesh | null {
        return this.open?.mesh.isFit ? this.open : null;
    }

    get budget(): number {
        return Math.max(1, Math.round(sliderOf("budget")));
    }

    private get crowdBudget(): number {
        return Math.max(1, Math.round(sliderOf("crowdBudget")));
    }

    private get speed(): number {
        return sliderOf("speed");
    }

    /** The way that is drawn of a found path. */
    get form(): StraightForm {
        return this.chosenForm;
    }

    set form(form: StraightForm) {
        this.chosenForm = form;
        element<HTMLSelectElement>("form").value = form;
    }

    // ---- meshes and recordings ----------------------------------------------------------------

    async openSample(name: string): Promise<void> {
        this.awaited = null;
        if (!zunoSamples[name]) return this.fail(`There is no sample “${name}”.`);
        await this.openBytes(name, await unpackSample(name), name);
    }

    /** Opens what was dropped: a mesh, then a recording over it. */
    async openFiles(files: File[]): Promise<void> {
        const contents = await Promise.all(files.map(async (file) => ({ name: file.name, bytes: new Uint8Array(await file.arrayBuffer()) })));
        const mesh = contents.find(({ bytes }) => !isRecording(bytes));
        if (mesh) await this.openBytes(mesh.name, mesh.bytes, null);
        if (this.awaited && this.awaited.file === this.open?.name) this.apply(this.awaited);
        const recording = contents.find(({ bytes }) => isRecording(bytes));
        if (recording) await this.openRecording(recording.name, recording.bytes);
    }

    /** Opens a mesh in a new engine; on an error what was open stays. */
    async openBytes(name: string, bytes: Uint8Array, sample: string | null): Promise<void> {
        const begin = performance.now();
        const turn = ++this.openings;
        let opened: OpenMesh;
        try {
            opened = await openMesh(name, sample, bytes, this.view, this.palette);
        } catch (error) {
            this.fail(`${name}: ${messageOf(error)}`);
            element<HTMLSelectElement>("sample").value = this.open?.sample ?? "";
            return;
        }
        if (turn !== this.openings) return; // another was asked for meanwhile
        const loaded = performance.now();
        this.closeMesh();
        this.open = opened;
        const { mesh } = opened;
        this.view.show(opened.view);
        this.view.eye.fit();
        this.floors.show(mesh);
        this.view.draw(begin);
        element<HTMLSelectElement>("sample").value = sample ?? "";
        if (mesh.isFit) this.hideError();
        else this.fail(`${name}: no world can run over this mesh: ${mesh.defects[0].text}`);
        if (!mesh.isFit) showTab("defects");
        if (this.showsGrid) this.showGrid();
        this.showAll();
        // the second frame begins when the first is on the screen
        for (let i = 0; i < 2; ++i) await new Promise(requestAnimationFrame);
        const seen = performance.now() - begin;
        this.timings = [
            ["Opened in", `${(loaded - begin).toFixed(0)} ms`],
            ["First picture", `after ${seen.toFixed(0)} ms`],
        ];
        element("stage").dataset.firstPicture = String(seen);
        this.showAll();
    }

    private closeMesh(): void {
        this.recording.close();
        this.open?.walker.stop();
        this.open?.crowd.end();
        this.open?.engine.closeWorld();
        this.open = this.lastPoint = this.focus = null;
    }

    private async openRecording(name: string, bytes: Uint8Array): Promise<void> {
        try {
            this.recording.open(await replayRecording(this, name, bytes));
            this.hideError();
            showTab("recording");
        } catch (error) {
            this.fail(`${name}: ${messageOf(error).replace(/; mesh has/, `; ${this.open?.name} has`)}`);
        }
        this.showAll();
    }

    // ---- the pointer --------------------------------------------------------------------------

    private hover(pick: Pick | null): void {
        if (pick?.isOnMesh) this.lastPoint = pick.point;
        showPointer(pick, this.open);
    }

    private click(pick: Pick | null): void {
        if (!pick || !this.world || this.tool === "look") return;
        const point = this.tool === "path" ? this.placing.settle(pick.point) : pick.point;
        if (!point) return;
        this.world.queries.click(this.tool, point);
        this.showToolTab();
        this.showAll();
    }

    private drag(marker: Marker, pick: Pick, isLast: boolean): void {
        const { queries } = this.world!;
        const isRay = marker.kind === "rayStart" || marker.kind === "rayEnd";
        const point = isRay ? pick.point : this.placing.settle(pick.point);
        if (point && !this.isDragging) queries.remember();
        this.isDragging = !isLast;
        const owner = point ? queries.drag(marker, point) : marker.owner;
        this.showAll(!isLast);
        this.view.pointer.regrip(marker.kind, owner);
    }

    moveView(right: number, up: number): void {
        element("cross").hidden = false;
        this.view.eye.pan(right, up);
    }

    // ---- what is shown ------------------------------------------------------------------------

    /** Brings the picture and the panels up to date; a short look leaves out what takes time. */
    showAll(isShort = false): void {
        const { open } = this;
        const active = open?.queries.active ?? null;
        open?.walker.keepTo(active, this.form);
        this.showSigns();
        open?.view.showStates(active?.nodeStates() ?? new Uint8Array(), this.palette);
        this.view.invalidate();
        showFigures(active, this.form, open?.queries.pendingStart ?? null);
        showSearches(open?.queries.all ?? [], active, (search) => this.choose(search), (search) => this.closeSearch(search));
        showRay(open?.queries.ray ?? null);
        showControls(open, this.tool, this.awaited?.file ?? null, !!open?.crowd.isOut || this.recording.isOpen);
        showColours(this.palette, open, this.showsGrid);
        this.showMovement();
        setPressed(element("grid"), this.showsGrid);
        setPressed(element("labels"), this.showsLabels);
        setPressed(element("top"), this.view.eye.isTopView);
        this.isAddressStale = true;
        if (isShort) return;
        setText("title", open ? open.name : "Navigation workbench");
        if (open) {
            const { blocks, bytes, peak } = open.engine.memory();
            const memory: [string, string] = ["World memory", `${byteText(bytes)} in ${blocks} blocks, at most ${byteText(peak)}`];
            showMesh(open.mesh, [...(open.mesh.isFit ? [memory] : []), ...this.timings]);
            setText("memory", open.mesh.isFit ? `runtime ${byteText(bytes)}` : "");
        }
        showDefects(open?.mesh ?? null, (node) => this.jumpTo(node));
    }

    private showSigns(): void {
        if (!this.open) return this.view.setSigns([], []);
        const { mesh, queries } = this.open;
        showSigns(this.view, mesh, this.palette, { queries, form: this.form, focus: this.focus, calls: this.recording.shown });
    }

    private showMovement(): void {
        this.open?.walker.show(this.speed);
        this.open?.crowd.show();
    }

    private choose(search: Search): void {
        this.open!.queries.active = search;
        this.showAll();
    }

    private closeSearch(search: Search): void {
        this.open!.queries.close(search);
        this.showAll();
    }

    closeActive(): void {
        if (this.open?.queries.active) this.closeSearch(this.open.queries.active);
    }

    private jumpTo(node: number): void {
        this.focus = node;
        this.view.lookAtNode(node);
        this.showAll();
    }

    private showGrid(): void {
        if (!this.world) return;
        if (!this.showsGrid) return this.view.setOverlay(null);
        const { mesh, engine } = this.world;
        let lowest = Infinity;
        for (let i = 0; i < mesh.vertices.length; i += 3)
            lowest = Math.min(lowest, mesh.normal.reduce((sum, value, axis) => sum + value * mesh.vertices[i + axis], 0));
        this.view.setOverlay(makeGridPicture(engine.blockingGrid(mostGridCells), mesh, this.palette, lowest));
    }

    setTheme(isDark: boolean): void {
        this.isDark = isDark;
        document.documentElement.dataset.theme = isDark ? "dark" : "light";
        this.view.setPalette(this.palette);
        this.open?.view.paint(this.palette);
        if (this.showsGrid) this.showGrid();
    }

    showSliders(): void {
        setText("budgetText", this.budget.toLocaleString("en"));
        setText("crowdBudgetText", this.crowdBudget.toLocaleString("en"));
        this.showMovement();
    }

    fail(message: string): void {
        setText("errorText", message);
        element("error").hidden = false;
    }

    hideError(): void {
        element("error").hidden = true;
    }

    // ---- those who walk -----------------------------------------------------------------------

    walk(): void {
        if (!this.world) return;
        if (this.world.crowd.isOut) this.world.crowd.end();
        this.world.walker.toggle(this.world.queries.active, this.form);
    }

    walkCrowd(): void {
        if (!this.world) return;
        if (!this.world.crowd.isOut) this.world.walker.stop();
        const count = Number(element<HTMLInputElement>("crowdCount").value);
        this.world.crowd.toggle(Math.min(Math.max(Math.round(count) || 1, 1), 2000));
    }

    private frame(time: number): void {
        const { open } = this;
        const seconds = Math.min((time - this.lastFrame) / 1000, 0.1);
        this.lastFrame = time;
        if (open?.queries.isPlaying) {
            open.queries.playFrame(this.budget);
            this.showAll(open.queries.isPlaying);
        }
        this.recording.frame(seconds);
        if (open?.walker.isWalking || open?.crowd.isWalking) {
            open.walker.frame(seconds, this.speed, this.palette);
            open.crowd.frame(seconds, this.crowdBudget, this.palette);
            this.showMovement();
        }
        if (this.view.draw(time)) this.frames.push(time);
        this.frames = this.frames.filter((each) => time - each < 1000);
        setText("rate", this.frames.length > 5 ? `${this.frames.length} fps` : "");
        if (this.isAddressStale && open && !this.isDragging) {
            this.isAddressStale = false;
            this.keepAddress(open);
        }
        requestAnimationFrame((next) => this.frame(next));
    }

    // ---- the address, scripts, pictures -------------------------------------------------------

    private keepAddress({ sample, name, queries: { all, ray } }: OpenMesh): void {
        clearTimeout(this.addressTimer);
        // browsers refuse an address that changes with every frame
        this.addressTimer = window.setTimeout(
            () =>
                writeAddress({
                    sample,
                    file: sample ? null : name,
                    searches: all.slice(0, 30).map(({ start, goal }) => [start, goal]),
                    ray: ray && [ray.from, ray.to],
                    camera: this.view.eye.state,
                    isTopView: this.view.eye.isTopView,
                    showsGrid: this.showsGrid,
                    showsLabels: this.showsLabels,
                    form: this.form,
                    cut: this.floors.cut,
                }),
            200,
        );
    }

    /** Shows what the page's address tells; what belongs to a file waits for that file. */
    async followAddress(): Promise<void> {
        clearTimeout(this.addressTimer);
        const state = readAddress();
        const isOpen = this.open !== null && (state.sample ?? state.file) === this.open.name;
        this.awaited = state.file && !state.sample && !isOpen ? state : null;
        if (this.awaited) return this.showAll();
        const sample = state.sample ?? Object.keys(zunoSamples)[0];
        if (!isOpen) await this.openSample(sample);
        if (isOpen || this.open?.sample === sample) this.apply(state);
    }

    private apply(state: AddressState): void {
        this.awaited = null;
        if (!this.world) return;
        this.form = state.form;
        this.world.queries.replaceAll(state.searches, state.ray);
        if (state.searches.length || state.ray) showTab(state.searches.length ? "search" : "ray");
        if (state.isTopView !== this.view.eye.isTopView) this.view.eye.setTopView(state.isTopView);
        if (state.camera) this.view.eye.state = state.camera;
        this.floors.cutAt(state.cut);
        this.setLabels(state.showsLabels);
        this.setGrid(state.showsGrid);
        this.showAll();
    }

    setLabels(isOn: boolean): void {
        this.showsLabels = isOn;
        this.view.setLabels(isOn);
    }

    setGrid(isOn: boolean): void {
        this.showsGrid = isOn;
        this.showGrid();
    }

    /** All that was answered, to the bit. */
    results() {
        return resultsOf(this.open);
    }

    async savePicture(): Promise<void> {
        const picture = await this.view.toPicture();
        if (picture) save(`${this.open?.name ?? "workbench"}.png`, picture);
    }

    saveScript(): void {
        save(`${this.open?.name ?? "workbench"}.txt`, new Blob([scriptText(this.open)], { type: "text/plain" }));
    }

    setTool(tool: Tool): void {
        this.tool = tool;
        this.open?.queries.cancel();
        this.showToolTab();
    }

    private showToolTab(): void {
        if (this.tool !== "look") showTab(this.tool === "path" ? "search" : "ray");
    }

    escape(): void {
        this.hideError();
        this.placing.say("");
        this.focus = null;
        element("cross").hidden = true;
        this.open?.queries.cancel();
    }
}
