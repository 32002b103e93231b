import { AddressState, readAddress, writeAddress } from "./address";
import { Actions, bindButtons, bindFiles, bindKeys } from "./controls";
import { Engine, MeshDescription, noGround, Vec2, Vec3 } from "./engine";
import { byteText, pointText, shortText } from "./format";
import { MeshView, Palette } from "./meshview";
import { makeGridPicture, Marker } from "./overlays";
import { darkPalette, lightPalette } from "./palette";
import { element, save, setPressed, setText, showDefects, showFigures, showLegend, showMesh, showSearches, showTab } from "./panel";
import { Ray, showRay } from "./rays";
import { Search, SearchBoard } from "./searches";
import { showSigns } from "./signs";
import { Pick, View } from "./view";

type Tool = "path" | "ray" | "look";

interface OpenMesh {
    name: string;
    sample: string | null;
    engine: Engine;
    mesh: MeshDescription;
    view: MeshView | null;
    board: SearchBoard;
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
    private active: Search | null = null;
    private pendingStart: Vec3 | null = null;
    private ray: Ray | null = null;
    private pendingRay: Vec3 | null = null;
    private tool: Tool = "path";
    private isPlaying = false;
    private addsNext = false;
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
        const view = mesh.isFit ? new MeshView(mesh, this.palette) : null;
        this.open = { name, sample, engine, mesh, view, board: new SearchBoard(engine) };
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
        this.active = this.ray = this.pendingStart = this.pendingRay = this.focus = null;
        this.isPlaying = this.addsNext = false;
    }

    // ---- the pointer --------------------------------------------------------------------------

    private click(pick: Pick | null): void {
        if (!pick || !this.open || this.tool === "look") return;
        if (this.tool === "path") {
            if (!pick.isOnMesh) return; // most likely a slip
            if (!this.pendingStart) this.pendingStart = pick.point;
            else this.startSearch(this.pendingStart, pick.point);
        } else if (!this.pendingRay) this.pendingRay = pick.point;
        else this.traceRay(this.pendingRay, pick.point);
        this.showAll();
    }

    private drag(marker: Marker, pick: Pick, isLast: boolean): void {
        let owner: unknown = marker.owner;
        if (marker.owner instanceof Search) {
            const search = marker.owner;
            const [start, goal] = marker.kind === "start" ? [pick.point, search.goal] : [search.start, pick.point];
            const next = this.open!.board.replace(search, start, goal);
            next.run(0xffffffff);
            this.active = owner = next;
        } else if (this.ray) {
            const { from, to } = this.ray;
            if (marker.kind === "rayStart") this.traceRay(pick.point, to);
            else this.traceRay(from, pick.point);
        }
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

    // ---- searches and rays --------------------------------------------------------------------

    private startSearch(start: Vec3, goal: Vec3): void {
        const { board } = this.open!;
        this.pendingStart = null;
        if (this.active && !this.addsNext) this.active = board.replace(this.active, start, goal);
        else this.active = board.open(start, goal);
        this.addsNext = false;
        this.isPlaying = true;
        showTab("search");
    }

    private restart(): void {
        if (!this.open) return;
        for (const search of [...this.open.board.all]) {
            const next = this.open.board.replace(search, search.start, search.goal);
            if (search === this.active) this.active = next;
        }
        this.isPlaying = false;
    }

    private addCrowd(): void {
        if (!this.open?.view) return;
        const { mesh, board } = this.open;
        const pick = (): Vec3 => {
            const node = Math.floor(Math.random() * (mesh.firstCorners.length - 1));
            return [...mesh.centres.subarray(node * 3, node * 3 + 3)] as Vec3;
        };
        for (let i = 0; i < 20; ++i) this.active = board.open(pick(), pick());
        this.isPlaying = true;
    }

    private closeSearch(search: Search): void {
        const { board } = this.open!;
        board.close(search);
        if (this.active === search) this.active = board.all.at(-1) ?? null;
        this.showAll();
    }

    private clearSearches(): void {
        for (const search of [...(this.open?.board.all ?? [])]) this.open!.board.close(search);
        this.active = this.pendingStart = null;
        this.isPlaying = false;
    }

    private step(): void {
        this.isPlaying = false;
        this.open?.board.runFrame(this.budget);
    }

    private finish(): void {
        this.isPlaying = false;
        this.open?.board.finish();
    }

    private togglePlay(): void {
        this.isPlaying = !this.isPlaying && !!this.open?.board.isRunning;
    }

    private traceRay(from: Vec3, to: Vec3): void {
        this.pendingRay = null;
        this.ray = { from, to, hit: this.open!.engine.traceRay(from, to) };
        showTab("ray");
    }

    // ---- what is shown ------------------------------------------------------------------------

    /** Brings the picture and the panels up to date; a short look leaves out what takes time. */
    private showAll(isShort = false): void {
        this.showSigns();
        const open = this.open;
        const searches = open?.board.all ?? [];
        open?.view?.showStates(this.active?.nodeStates() ?? new Uint8Array(), this.palette);
        this.view.invalidate();
        showFigures(this.active);
        showSearches(searches, this.active, (search) => this.choose(search), (search) => this.closeSearch(search));
        showRay(this.ray);
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
        const open = this.open;
        if (!open?.view) return this.view.setSigns([], []);
        const { active, pendingStart, ray, pendingRay, focus } = this;
        showSigns(this.view, open.mesh, this.palette, { searches: open.board.all, active, pendingStart, ray, pendingRay, focus });
    }

    private showLegend(): void {
        const { palette } = this;
        const entries: [number, string][] = [
            [palette.lowFloor, "lowest floor"],
            [palette.highFloor, "highest floor"],
            [palette.wall, "border without neighbour"],
        ];
        if (this.open?.mesh.isFit && this.open.mesh.islands.some((island) => island > 0)) entries.push([palette.islands[0], "island apart"]);
        if (this.active) entries.push([palette.open, "open"], [palette.closed, "closed"]);
        if (this.showsGrid) entries.push([palette.blocked, "blocked"]);
        showLegend(entries);
    }

    private showControls(): void {
        const isFit = !!this.open?.view;
        const isRunning = !!this.open?.board.isRunning;
        const hints: Record<Tool, [string, string]> = {
            path: ["Click where the path starts", "Click the goal"],
            ray: ["Click where the ray begins", "Click where it ends"],
            look: ["", ""],
        };
        const isPending = this.tool === "path" ? this.pendingStart !== null : this.pendingRay !== null;
        const isDone = this.tool === "path" ? this.active !== null && !this.addsNext : this.ray !== null;
        const invitation = this.awaited ? `This address is about ${this.awaited.file}: drop that file here` : "Choose a sample, or drop a mesh file";
        setText("hint", !this.open || this.awaited ? invitation : isFit && (isPending || !isDone) ? hints[this.tool][isPending ? 1 : 0] : "");
        setText("play", this.isPlaying ? "Pause" : "Play");
        for (const id of ["play", "step", "finish"]) element<HTMLButtonElement>(id).disabled = !isRunning;
        for (const id of ["restart", "clear"]) element<HTMLButtonElement>(id).disabled = !this.open?.board.all.length;
        for (const id of ["another", "crowd", "script", "grid", "labels"]) element<HTMLButtonElement>(id).disabled = !isFit;
        setPressed(element("another"), this.addsNext);
        setPressed(element("grid"), this.showsGrid);
        setPressed(element("labels"), this.showsLabels);
        setPressed(element("top"), this.view.isTopView);
        for (const button of document.querySelectorAll<HTMLElement>("[data-tool]"))
            setPressed(button, button.dataset.tool === this.tool);
        this.showLegend();
    }

    private choose(search: Search): void {
        this.active = search;
        this.showAll();
    }

    private jumpTo(node: number): void {
        this.focus = node;
        this.view.lookAtNode(node);
        this.showAll();
    }

    private showGrid(): void {
        const open = this.open;
        if (!open?.view) return;
        if (!this.showsGrid) return this.view.setOverlay(null);
        const { mesh, view } = open;
        let lowest = Infinity;
        for (let i = 0; i < mesh.vertices.length; i += 3)
            lowest = Math.min(lowest, mesh.normal.reduce((sum, value, axis) => sum + value * mesh.vertices[i + axis], 0));
        this.view.setOverlay(makeGridPicture(open.engine.blockingGrid(mostGridCells), view.mesh, this.palette, lowest));
    }

    private setTheme(isDark: boolean): void {
        this.isDark = isDark;
        document.documentElement.dataset.theme = isDark ? "dark" : "light";
        this.view.setPalette(this.palette);
        this.open?.view?.paint(this.palette);
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
        if (this.isPlaying && open) {
            open.board.runFrame(this.budget);
            this.isPlaying = open.board.isRunning;
            this.showAll(this.isPlaying);
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

    private keepAddress(open: OpenMesh): void {
        clearTimeout(this.addressTimer);
        // browsers refuse an address that changes with every frame
        this.addressTimer = window.setTimeout(
            () =>
                writeAddress({
                    sample: open.sample,
                    file: open.sample ? null : open.name,
                    searches: open.board.all.slice(0, 30).map(({ start, goal }) => [start, goal]),
                    ray: this.ray ? [this.ray.from, this.ray.to] : null,
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
        const open = this.open;
        if (!open?.view) return;
        for (const [start, goal] of state.searches) this.active = open.board.open(start, goal);
        open.board.finish();
        if (state.ray) this.traceRay(...state.ray);
        if (state.searches.length) showTab("search");
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
        for (const { start, goal } of this.open?.board.all ?? []) lines.push(`path ${pointText(start)} ${pointText(goal)}`);
        if (this.ray) lines.push(`ray ${pointText(this.ray.from)} ${pointText(this.ray.to)}`);
        return lines.join("\n") + "\n";
    }

    /** All that was answered, to the bit. */
    results(): { searches: { state: string; cost: number; waypoints: Vec3[]; expansions: number }[]; hit: number | null } {
        const searches = this.open?.board.all ?? [];
        return {
            searches: searches.map(({ state, cost, waypoints, expansions }) => ({ state, cost, waypoints, expansions })),
            hit: this.ray && this.ray.hit,
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
        this.pendingStart = this.pendingRay = null;
        if (tool !== "look") showTab(tool === "path" ? "search" : "ray");
    }

    private escape(): void {
        this.hideError();
        this.pendingStart = this.pendingRay = this.focus = null;
        this.addsNext = false;
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
            play: () => this.togglePlay(),
            step: () => this.step(),
            finish: () => this.finish(),
            restart: () => this.restart(),
            another: () => (this.addsNext = !this.addsNext),
            crowd: () => this.addCrowd(),
            clear: () => this.clearSearches(),
            clearRay: () => (this.ray = this.pendingRay = null),
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
            Delete: () => this.active && this.closeSearch(this.active),
            "?": actions.help,
        };
        bindKeys(withShow(keys));
    }
}
