import { AddressState, readAddress, writeAddress } from "./address";
import { Actions, bindButtons, bindFiles, bindKeys } from "./controls";
import { Engine, MeshDescription, noGround, Vec2, Vec3 } from "./engine";
import { byteText, pointText, shortText } from "./format";
import { MeshView, Palette } from "./meshview";
import { makeGridPicture, Marker } from "./overlays";
import { darkPalette, lightPalette } from "./palette";
import { element, save, setPressed, setText, showDefects, showFigures, showLegend, showMesh, showSearches, showTab } from "./panel";
import { Queries, Tool } from "./queries";
import { showRay } from "./rays";
import { Search } from "./searches";
import { showSigns } from "./signs";
import { Pick, View } from "./view";

interface OpenMesh {
    name: string;
    sample: string | null;
    engine: Engine;
    mesh: MeshDescription;
    view: MeshView;
    queries: Queries;
}

const mostGridCells = 4e6;

async function unpack(base64: string): Promise<Uint8Array> {
    const packed = Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0));
    const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("gzip"));
    return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** The page: what is open, what is chosen, and what the controls do with it. */
export class Workbench {
    readonly view: View;
    private open: OpenMesh | null = null;
    private tool: Tool = "path";
    private showsGrid = false;
    private showsLabels = false;
    private isDark = matchMedia("(prefers-color-scheme: dark)").matches;
    private focus: number | null = null;
    private frames: number[] = [];
    private timings: [string, string][] = [];
    private openings = 0;
    private isAddressStale = false;
    /** What an address told about a file that is not open yet. */
    private awaited: AddressState | null = null;

    constructor() {
        this.view = new View(element<HTMLCanvasElement>("scene"), element<HTMLCanvasElement>("names"), {
            onHover: (pick) => this.showPointer(pick),
            onClick: (pick) => this.click(pick),
            onDrag: (marker, pick, isLast) => this.drag(marker, pick, isLast),
            onCameraMoved: () => (this.isAddressStale = true),
        });
        const samples = element<HTMLSelectElement>("sample");
        samples.add(new Option("–", ""));
        for (const name of Object.keys(zunoSamples)) samples.add(new Option(name, name));
        this.connectControls();
        this.setTheme(this.isDark);
        this.setBudget();
        this.showAll();
        requestAnimationFrame((time) => this.frame(time));
    }

    private get palette(): Palette {
        return this.isDark ? darkPalette : lightPalette;
    }

    /** What is open, if a world runs over it. */
    private get world(): OpenMesh | null {
        return this.open?.mesh.isFit ? this.open : null;
    }

    private get budget(): number {
        return Math.max(1, Math.round(10 ** (Number(element<HTMLInputElement>("budget").value) / 10)));
    }

    // ---- meshes -------------------------------------------------------------------------------

    async openSample(name: string): Promise<void> {
        this.awaited = null;
        if (!zunoSamples[name]) return this.fail(`There is no sample “${name}”.`);
        await this.openBytes(name, await unpack(zunoSamples[name]), name);
    }

    async openFile(file: File): Promise<void> {
        await this.openBytes(file.name, new Uint8Array(await file.arrayBuffer()), null);
        if (this.awaited && this.awaited.file === this.open?.name) this.apply(this.awaited);
    }

    /** Opens a mesh in a new engine; on an error what was open stays. */
    async openBytes(name: string, bytes: Uint8Array, sample: string | null): Promise<void> {
        const begin = performance.now();
        const turn = ++this.openings;
        let engine: Engine;
        let mesh: MeshDescription;
        try {
            engine = await createEngine();
            mesh = engine.openMesh(bytes);
        } catch (error) {
            this.fail(`${name}: ${error instanceof Error ? error.message.replace(/^\/mesh: /, "") : String(error)}`);
            element<HTMLSelectElement>("sample").value = this.open?.sample ?? "";
            return;
        }
        if (turn !== this.openings) return; // another was asked for meanwhile
        const loaded = performance.now();
        this.closeMesh();
        const view = new MeshView(mesh, this.palette);
        this.open = { name, sample, engine, mesh, view, queries: new Queries(engine, mesh) };
        this.view.show(view);
        this.view.fit();
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
        this.open?.engine.closeWorld();
        this.open = null;
        this.focus = null;
    }

    // ---- the pointer --------------------------------------------------------------------------

    private click(pick: Pick | null): void {
        if (!pick || !this.world || this.tool === "look") return;
        if (this.tool === "path" && !pick.isOnMesh) return; // most likely a slip
        this.world.queries.click(this.tool, pick.point);
        this.showToolTab();
        this.showAll();
    }

    private drag(marker: Marker, pick: Pick, isLast: boolean): void {
        const owner = this.world?.queries.drag(marker, pick.point);
        this.showAll(!isLast);
        this.view.regrip(marker.kind, owner);
    }

    private showPointer(pick: Pick | null): void {
        const open = this.open;
        if (!pick || !open) {
            for (const id of ["pointer", "node", "ground"]) setText(id, "");
            return;
        }
        const { mesh, engine } = open;
        setText("pointer", pick.point.map(shortText).join(", "));
        if (!mesh.isFit) return setText("node", "no world");
        // what a search would start from: where floors meet, the lowest id
        const node = engine.nodeAt(pick.point);
        const surface = mesh.tables.surfaces.find((type) => type.id === mesh.surfaceTypes[node]);
        setText("node", node < 0 ? "no node" : `node ${node} · class ${mesh.heightClasses[node]}${surface ? ` · ${surface.name}` : ""}`);
        const position = this.withoutUp(pick.point);
        const height = engine.groundHeight(position);
        setText("ground", engine.isBlocked(position) ? "blocked" : height === noGround ? "no ground" : `ground ${shortText(height)}`);
    }

    private withoutUp(point: Vec3): Vec2 {
        const size = this.open!.mesh.normal.map(Math.abs);
        const up = size.indexOf(Math.max(...size));
        return point.filter((_, axis) => axis !== up) as Vec2;
    }

    // ---- what is shown ------------------------------------------------------------------------

    /** Brings the picture and the panels up to date; a short look leaves out what takes time. */
    private showAll(isShort = false): void {
        this.showSigns();
        const { open } = this;
        const active = open?.queries.active ?? null;
        open?.view.showStates(active?.nodeStates() ?? new Uint8Array(), this.palette);
        this.view.invalidate();
        showFigures(active);
        showSearches(open?.queries.all ?? [], active, (search) => this.choose(search), (search) => this.closeSearch(search));
        showRay(open?.queries.ray ?? null);
        this.showControls();
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
        showSigns(this.view, this.open.mesh, this.palette, this.open.queries, this.focus);
    }

    private showLegend(): void {
        const { palette } = this;
        const entries: [number, string][] = [
            [palette.lowFloor, "lowest floor"],
            [palette.highFloor, "highest floor"],
            [palette.wall, "border without neighbour"],
        ];
        if (this.open?.mesh.islands.some((island) => island > 0)) entries.push([palette.islands[0], "island apart"]);
        if (this.open?.queries.active) entries.push([palette.open, "open"], [palette.closed, "closed"]);
        if (this.showsGrid) entries.push([palette.blocked, "blocked"]);
        showLegend(entries);
    }

    private showControls(): void {
        const queries = this.world?.queries;
        const hints: Record<Tool, [string, string]> = {
            path: ["Click where the path starts", "Click the goal"],
            ray: ["Click where the ray begins", "Click where it ends"],
            look: ["", ""],
        };
        const isPending = !!(this.tool === "path" ? queries?.pendingStart : queries?.pendingRay);
        const isDone = this.tool === "path" ? queries?.active && !queries.addsNext : queries?.ray;
        const invitation = this.awaited ? `This address is about ${this.awaited.file}: drop that file here` : "Choose a sample, or drop a mesh file";
        setText("hint", !this.open || this.awaited ? invitation : queries && (isPending || !isDone) ? hints[this.tool][isPending ? 1 : 0] : "");
        setText("play", queries?.isPlaying ? "Pause" : "Play");
        for (const id of ["play", "step", "finish"]) element<HTMLButtonElement>(id).disabled = !queries?.board.isRunning;
        for (const id of ["restart", "clear"]) element<HTMLButtonElement>(id).disabled = !queries?.all.length;
        for (const id of ["another", "crowd", "script", "grid"]) element<HTMLButtonElement>(id).disabled = !queries;
        setPressed(element("another"), !!queries?.addsNext);
        setPressed(element("grid"), this.showsGrid);
        setPressed(element("labels"), this.showsLabels);
        setPressed(element("top"), this.view.isTopView);
        for (const button of document.querySelectorAll<HTMLElement>("[data-tool]"))
            setPressed(button, button.dataset.tool === this.tool);
        this.showLegend();
    }

    private choose(search: Search): void {
        this.open!.queries.active = search;
        this.showAll();
    }

    private closeSearch(search: Search): void {
        this.open!.queries.close(search);
        this.showAll();
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

    private setTheme(isDark: boolean): void {
        this.isDark = isDark;
        document.documentElement.dataset.theme = isDark ? "dark" : "light";
        this.view.setPalette(this.palette);
        this.open?.view.paint(this.palette);
        if (this.showsGrid) this.showGrid();
    }

    private setBudget(): void {
        setText("budgetText", this.budget.toLocaleString("en"));
    }

    private fail(message: string): void {
        setText("errorText", message);
        element("error").hidden = false;
    }

    private hideError(): void {
        element("error").hidden = true;
    }

    // ---- frames, files, controls --------------------------------------------------------------

    private frame(time: number): void {
        const open = this.open;
        if (open?.queries.isPlaying) {
            open.queries.playFrame(this.budget);
            this.showAll(open.queries.isPlaying);
        }
        if (this.view.draw(time)) this.frames.push(time);
        this.frames = this.frames.filter((each) => time - each < 1000);
        setText("rate", this.frames.length > 5 ? `${this.frames.length} fps` : "");
        if (this.isAddressStale && open) {
            this.isAddressStale = false;
            this.keepAddress(open);
        }
        requestAnimationFrame((next) => this.frame(next));
    }

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
                    camera: this.view.cameraState,
                    isTopView: this.view.isTopView,
                    showsGrid: this.showsGrid,
                    showsLabels: this.showsLabels,
                }),
            200,
        );
    }
    private addressTimer = 0;

    /** Shows what the page's address tells; what belongs to a file waits for that file. */
    async followAddress(): Promise<void> {
        const state = readAddress();
        this.awaited = state.file && !state.sample ? state : null;
        if (this.awaited) return this.showAll();
        const sample = state.sample ?? Object.keys(zunoSamples)[0];
        await this.openSample(sample);
        if (this.open?.sample === sample) this.apply(state);
    }

    private apply(state: AddressState): void {
        this.awaited = null;
        if (!this.world) return;
        const { queries } = this.world;
        queries.solve(state.searches);
        if (state.ray) queries.traceRay(...state.ray);
        if (state.searches.length || state.ray) showTab(state.searches.length ? "search" : "ray");
        if (state.isTopView) this.view.setTopView(true);
        if (state.camera) this.view.cameraState = state.camera;
        this.setLabels(state.showsLabels);
        this.setGrid(state.showsGrid);
        this.showAll();
    }

    private setLabels(isOn: boolean): void {
        this.showsLabels = isOn;
        this.view.setLabels(isOn);
    }

    private setGrid(isOn: boolean): void {
        this.showsGrid = isOn;
        this.showGrid();
    }

    /** The searches and the ray, as zunopath run reads them. */
    scriptText(): string {
        const lines = [`# queries over ${this.open?.name ?? "no mesh"}`];
        for (const { start, goal } of this.open?.queries.all ?? []) lines.push(`path ${pointText(start)} ${pointText(goal)}`);
        const ray = this.open?.queries.ray;
        if (ray) lines.push(`ray ${pointText(ray.from)} ${pointText(ray.to)}`);
        return lines.join("\n") + "\n";
    }

    /** All that was answered, to the bit. */
    results(): { searches: { state: string; cost: number; waypoints: Vec3[]; expansions: number }[]; hit: number | null } {
        const queries = this.open?.queries;
        return {
            searches: (queries?.all ?? []).map(({ state, cost, waypoints, expansions }) => ({ state, cost, waypoints, expansions })),
            hit: queries?.ray?.hit ?? null,
        };
    }

    private async savePicture(): Promise<void> {
        const picture = await this.view.toPicture();
        if (picture) save(`${this.open?.name ?? "workbench"}.png`, picture);
    }

    private saveScript(): void {
        save(`${this.open?.name ?? "workbench"}.txt`, new Blob([this.scriptText()], { type: "text/plain" }));
    }

    private setTool(tool: Tool): void {
        this.tool = tool;
        this.open?.queries.cancel();
        this.showToolTab();
    }

    private showToolTab(): void {
        if (this.tool !== "look") showTab(this.tool === "path" ? "search" : "ray");
    }

    private escape(): void {
        this.hideError();
        this.focus = null;
        this.open?.queries.cancel();
    }

    private connectControls(): void {
        const actions: Actions = {
            open: () => element("file").click(),
            fit: () => this.view.fit(),
            top: () => this.view.setTopView(!this.view.isTopView),
            labels: () => this.setLabels(!this.showsLabels),
            grid: () => this.setGrid(!this.showsGrid),
            picture: () => void this.savePicture(),
            script: () => this.saveScript(),
            link: () => void navigator.clipboard?.writeText(location.href),
            theme: () => this.setTheme(!this.isDark),
            help: () => element<HTMLDialogElement>("keys").showModal(),
            play: () => this.world?.queries.togglePlay(),
            step: () => this.world?.queries.step(this.budget),
            finish: () => this.world?.queries.finish(),
            restart: () => this.world?.queries.restart(),
            another: () => {
                if (this.world) this.world.queries.addsNext = !this.world.queries.addsNext;
            },
            crowd: () => this.world?.queries.addCrowd(),
            clear: () => this.world?.queries.clear(),
            clearRay: () => this.world?.queries.clearRay(),
            errorClose: () => this.hideError(),
        };
        const shown = (action: () => void) => () => {
            action();
            this.showAll();
        };
        const withShow = (all: Actions) => Object.fromEntries(Object.entries(all).map(([name, action]) => [name, shown(action)]));
        bindButtons(withShow(actions));
        for (const button of document.querySelectorAll<HTMLElement>("[data-tool]"))
            button.addEventListener("click", shown(() => this.setTool(button.dataset.tool as Tool)));
        for (const tab of document.querySelectorAll<HTMLElement>("[data-tab]"))
            tab.addEventListener("click", () => showTab(tab.dataset.tab!));
        element("budget").addEventListener("input", () => this.setBudget());
        element("sample").addEventListener("change", () => {
            const name = element<HTMLSelectElement>("sample").value;
            if (name) void this.openSample(name);
        });
        bindFiles((file) => void this.openFile(file));
        const keys: Actions = {
            s: () => this.setTool("path"),
            r: () => this.setTool("ray"),
            v: () => this.setTool("look"),
            f: actions.fit,
            t: actions.top,
            l: actions.labels,
            g: actions.grid,
            p: actions.picture,
            q: actions.script,
            d: actions.theme,
            n: actions.step,
            " ": actions.play,
            Enter: actions.finish,
            Escape: () => this.escape(),
            Delete: () => {
                if (this.open?.queries.active) this.closeSearch(this.open.queries.active);
            },
            "?": actions.help,
        };
        bindKeys(withShow(keys));
    }
}
