import type { Point } from "zunopathfinder/external";
import { AddressBar } from "./addressbar";
import { BakePanel } from "./bakepanel";
import { connectControls } from "./commands";
import { Floors } from "./floors";
import { byteText } from "./format";
import { closeMesh, type OpenMesh, type Running } from "./meshes";
import type { Palette } from "./meshview";
import { Movement } from "./movement";
import { Opener } from "./opener";
import { resultsOf, scriptText } from "./outputs";
import { makeGridPicture, Marker } from "./overlays";
import { darkPalette, lightPalette } from "./palette";
import { element, save, setPressed, setText, showDefects, showFigures, showMesh, showSearches, showTab } from "./panel";
import { Placing } from "./placing";
import type { Pick } from "./pointer";
import type { Tool } from "./queries";
import { showRay } from "./rays";
import { RecordingPanel } from "./recordingpanel";
import type { Search, StraightForm } from "./searches";
import { showSigns } from "./signs";
import { showColours, showControls, showPointer } from "./status";
import { View } from "./view";

const mostGridCells = 4e6;

/** The page: what is open, what is chosen, and how it is shown. */
export class Workbench {
    readonly view: View;
    readonly floors: Floors;
    readonly recording: RecordingPanel;
    readonly placing = new Placing(this);
    readonly opener = new Opener(this);
    readonly bakery = new BakePanel(this);
    readonly address = new AddressBar(this);
    readonly movement: Movement;
    open: OpenMesh | null = null;
    showsGrid = false;
    showsLabels = false;
    isDark = matchMedia("(prefers-color-scheme: dark)").matches;
    /** Where the pointer was last on the mesh. */
    lastPoint: Point | null = null;
    /** While a sign follows the pointer. */
    isDragging = false;
    private tool: Tool = "path";
    private chosenForm: StraightForm = "improved";
    private focus: number | null = null;

    constructor() {
        this.view = new View(element<HTMLCanvasElement>("scene"), element<HTMLCanvasElement>("names"), {
            onHover: (pick) => this.hover(pick),
            onClick: (pick) => this.click(pick),
            onDrag: (marker, pick, isLast) => this.drag(marker, pick, isLast),
            onCameraMoved: () => this.address.touch(),
        });
        this.floors = new Floors(this.view, () => this.showAll(true));
        this.recording = new RecordingPanel(() => this.showAll(true));
        this.movement = new Movement(this);
        connectControls(this);
        this.setTheme(this.isDark);
        this.movement.showSliders();
        this.showAll();
    }

    get palette(): Palette {
        return this.isDark ? darkPalette : lightPalette;
    }

    /** What runs over the mesh that is open, if a world can. */
    get running(): Running | null {
        return this.open?.running ?? null;
    }

    /** The way that is drawn of a found path. */
    get form(): StraightForm {
        return this.chosenForm;
    }

    set form(form: StraightForm) {
        this.chosenForm = form;
        element<HTMLSelectElement>("form").value = form;
    }

    /** Shows a mesh in the place of the one before. */
    show(opened: OpenMesh, time: number): void {
        this.recording.close();
        if (this.open) closeMesh(this.open);
        this.open = opened;
        this.lastPoint = this.focus = null;
        this.view.show(opened.view);
        this.view.eye.fit();
        this.floors.show(opened.mesh);
        this.view.draw(time);
        element<HTMLSelectElement>("sample").value = opened.sample ?? "";
        if (this.showsGrid) this.showGrid();
        this.showAll();
    }

    // ---- the pointer --------------------------------------------------------------------------

    private hover(pick: Pick | null): void {
        if (pick?.isOnMesh) this.floors.uncover((this.lastPoint = pick.point));
        showPointer(pick, this.open);
    }

    private click(pick: Pick | null): void {
        if (!pick || !this.running || this.tool === "look") return;
        const point = this.tool === "path" ? this.placing.settle(pick.point) : pick.point;
        if (!point) return;
        this.running.queries.click(this.tool, point);
        this.showToolTab();
        this.showAll();
    }

    private drag(marker: Marker, pick: Pick, isLast: boolean): void {
        const { queries } = this.running!;
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
        const { open, running } = this;
        const queries = running?.queries;
        const active = queries?.active ?? null;
        running?.walker.keepTo(active, this.form);
        this.showSigns();
        open?.view.showStates(active?.nodeStates() ?? new Uint8Array(), this.palette);
        this.view.invalidate();
        showFigures(active, this.form, queries?.pendingStart ?? null);
        showSearches(queries?.all ?? [], active, (search) => this.choose(search), (search) => this.closeSearch(search));
        showRay(queries?.ray ?? null);
        showControls(open, this.tool, this.address.awaited?.file ?? null, !!running?.crowd.isOut || this.recording.isOpen);
        showColours(this.palette, open, this.showsGrid);
        this.movement.show();
        setPressed(element("grid"), this.showsGrid);
        setPressed(element("labels"), this.showsLabels);
        const { shownScene } = this.view;
        element<HTMLButtonElement>("scenery").disabled = !shownScene;
        setPressed(element("scenery"), !!shownScene?.group.visible);
        setPressed(element("top"), this.view.eye.isTopView);
        this.address.touch();
        if (!isShort) this.showOpen();
    }

    /** What is open, and what is wrong with it. */
    private showOpen(): void {
        const { open } = this;
        setText("title", open ? open.name : "Navigation workbench");
        showDefects(open?.mesh ?? null, (node) => this.jumpTo(node));
        if (!open) return;
        const rows = [...this.opener.timings];
        let memoryText = "";
        if (open.running) {
            const { blocks, bytes, peakBytes } = open.running.world.session.memoryFigures();
            rows.unshift(["World memory", `${byteText(bytes)} in ${blocks} blocks, at most ${byteText(peakBytes)}`]);
            memoryText = `runtime ${byteText(bytes)}`;
        }
        showMesh(open.mesh, rows);
        setText("memory", memoryText);
    }

    private showSigns(): void {
        if (!this.open) return this.view.setSigns([], []);
        const queries = this.running?.queries ?? null;
        showSigns(this.view, this.open.mesh, this.palette, { queries, form: this.form, focus: this.focus, calls: this.recording.shown });
    }

    private choose(search: Search): void {
        this.running!.queries.active = search;
        this.showAll();
    }

    private closeSearch(search: Search): void {
        this.running!.queries.close(search);
        this.showAll();
    }

    closeActive(): void {
        const active = this.running?.queries.active;
        if (active) this.closeSearch(active);
    }

    private jumpTo(node: number): void {
        this.focus = node;
        this.view.lookAtNode(node);
        this.showAll();
    }

    private showGrid(): void {
        if (!this.open || !this.running) return;
        if (!this.showsGrid) return this.view.setOverlay(null);
        const { mesh } = this.open;
        let lowest = Infinity;
        for (let i = 0; i < mesh.vertices.length; i += 3)
            lowest = Math.min(lowest, mesh.normal.reduce((sum, value, axis) => sum + value * mesh.vertices[i + axis], 0));
        this.view.setOverlay(makeGridPicture(this.running.world.blockingGrid(mostGridCells), mesh, this.palette, lowest));
    }

    setTheme(isDark: boolean): void {
        this.isDark = isDark;
        document.documentElement.dataset.theme = isDark ? "dark" : "light";
        this.view.setPalette(this.palette);
        this.open?.view.paint(this.palette);
        if (this.showsGrid) this.showGrid();
    }

    toggleScene(): void {
        const { shownScene } = this.view;
        if (shownScene) shownScene.group.visible = !shownScene.group.visible;
    }

    setLabels(isOn: boolean): void {
        this.showsLabels = isOn;
        this.view.setLabels(isOn);
    }

    setGrid(isOn: boolean): void {
        this.showsGrid = isOn;
        this.showGrid();
    }

    fail(message: string): void {
        setText("errorText", message);
        element("error").hidden = false;
    }

    hideError(): void {
        element("error").hidden = true;
    }

    // ---- tools, results, files ----------------------------------------------------------------

    setTool(tool: Tool): void {
        this.tool = tool;
        this.running?.queries.cancel();
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
        this.running?.queries.cancel();
    }

    /** All that was answered, to the bit. */
    results() {
        return resultsOf(this.running?.queries);
    }

    async savePicture(): Promise<void> {
        const picture = await this.view.toPicture();
        if (picture) save(`${this.open?.name ?? "workbench"}.png`, picture);
    }

    saveScript(): void {
        save(`${this.open?.name ?? "workbench"}.txt`, new Blob([scriptText(this.open)], { type: "text/plain" }));
    }
}
