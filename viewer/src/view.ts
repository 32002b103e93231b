import * as THREE from "three";
import type { Line2 } from "three/examples/jsm/lines/Line2.js";
import type { Point } from "zunopathfinder/external";
import { Eye } from "./camera";
import type { Characters } from "./characters";
import { Labels } from "./labels";
import { MeshView, Palette } from "./meshview";
import { disposeLine, Marker } from "./overlays";
import { Pickable, Pointer, PointerListener } from "./pointer";
import type { SceneView } from "./scene";

export interface ViewListener extends PointerListener {
    onCameraMoved(): void;
}

const slowFrame = 22; // milliseconds: below 45 frames a second
const toleratedFrames = 4; // slow ones, until the picture gets coarser
const manyNodes = 5000; // more than a processor draws in a frame's time
const restAfter = 160; // milliseconds without movement until everything is drawn again

/** Without a graphics card smooth edges cost too much. */
function isDrawnByProcessor(): boolean {
    const context = document.createElement("canvas").getContext("webgl2");
    const details = context?.getExtension("WEBGL_debug_renderer_info");
    const name = details ? String(context!.getParameter(details.UNMASKED_RENDERER_WEBGL)) : "";
    return /swiftshader|llvmpipe|software/i.test(name);
}

/** The picture: what is drawn, and when. */
export class View implements Pickable {
    readonly eye: Eye;
    readonly pointer: Pointer;
    private readonly isDrawnByProcessor = isDrawnByProcessor();
    private readonly renderer: THREE.WebGLRenderer;
    private readonly scene = new THREE.Scene();
    private readonly labels: Labels;
    private readonly cut = new THREE.Plane(new THREE.Vector3(0, -1, 0), Infinity);
    private meshView: MeshView | null = null;
    private lines: Line2[] = [];
    private signs: Marker[] = [];
    private characters: Characters | null = null;
    private ground: SceneView | null = null;
    private overlay: THREE.Mesh<THREE.BufferGeometry, THREE.MeshBasicMaterial> | null = null;
    private isStale = true;
    private lastMovement = 0;
    private lastFrame = 0;
    private wasMoving = false;
    private slowFrames = 0; // seen while the camera moved, since the mesh was opened
    private isCoarse = false;

    constructor(
        private readonly canvas: HTMLCanvasElement,
        labelCanvas: HTMLCanvasElement,
        private readonly listener: ViewListener,
    ) {
        this.renderer = new THREE.WebGLRenderer({ canvas, antialias: !this.isDrawnByProcessor });
        this.renderer.localClippingEnabled = true; // of roofs
        this.labels = new Labels(labelCanvas);
        this.eye = new Eye(canvas, () => {
            this.noteMovement();
            this.listener.onCameraMoved();
        });
        this.pointer = new Pointer(canvas, this, listener);
        new ResizeObserver(() => this.resize()).observe(canvas.parentElement!);
        this.resize();
    }

    get camera(): THREE.Camera {
        return this.eye.camera;
    }

    get shownMesh(): MeshView | null {
        return this.meshView;
    }

    get markers(): Marker[] {
        return this.signs;
    }

    setCameraFree(isFree: boolean): void {
        this.eye.controls.enabled = isFree;
    }

    /** Shows a mesh instead of the last one. */
    show(meshView: MeshView | null): void {
        if (this.meshView) {
            this.scene.remove(this.meshView.group);
            this.meshView.dispose();
        }
        this.setOverlay(null);
        this.setSigns([], []);
        this.setCharacters(null);
        this.setScene(null);
        this.cutHeight = Infinity;
        this.meshView = meshView;
        const isTooMuch = this.isDrawnByProcessor && (meshView?.nodeCount ?? 0) > manyNodes;
        this.slowFrames = isTooMuch ? toleratedFrames + 1 : 0; // nothing to learn by dropping frames
        if (meshView) {
            this.scene.add(meshView.group);
            this.eye.setBounds(meshView.bounds);
        }
        this.isStale = true;
    }

    /** Those who walk, instead of the last ones. */
    setCharacters(characters: Characters | null): void {
        this.characters?.dispose();
        this.characters = characters;
        if (characters) this.scene.add(characters.mesh);
        this.isStale = true;
    }

    /** The scene under the mesh, instead of the last one. */
    setScene(scene: SceneView | null): void {
        this.ground?.dispose();
        this.ground = scene;
        if (scene) this.meshView?.group.add(scene.group);
        this.isStale = true;
    }

    get shownScene(): SceneView | null {
        return this.ground;
    }

    setPalette(palette: Palette): void {
        this.scene.background = new THREE.Color(palette.background);
        this.labels.colour = palette.background > 0x808080 ? "#1c2733" : "#e6edf3";
        this.labels.background = `#${palette.background.toString(16).padStart(6, "0")}`;
        this.isStale = true;
    }

    /** Paths, rays and signs, instead of the last ones. */
    setSigns(lines: Line2[], markers: Marker[]): void {
        for (const line of this.lines) {
            line.removeFromParent();
            disposeLine(line);
        }
        for (const marker of this.signs) {
            marker.mesh.removeFromParent();
            marker.dispose();
        }
        this.lines = lines;
        this.signs = markers;
        for (const line of lines) this.meshView?.group.add(line);
        for (const marker of markers) this.scene.add(marker.mesh);
        this.isStale = true;
    }

    setOverlay(overlay: THREE.Mesh<THREE.BufferGeometry, THREE.MeshBasicMaterial> | null): void {
        if (this.overlay) {
            this.overlay.removeFromParent();
            this.overlay.geometry.dispose();
            this.overlay.material.map?.dispose();
            this.overlay.material.dispose();
        }
        this.overlay = overlay;
        if (overlay) this.meshView?.group.add(overlay);
        this.meshView?.setTranslucent(overlay !== null);
        this.isStale = true;
    }

    setLabels(isOn: boolean): void {
        this.labels.isOn = isOn;
        this.isStale = true;
    }

    invalidate(): void {
        this.isStale = true;
    }

    fit(): void {
        this.eye.fit();
    }

    /** Looks at a node from near. */
    lookAtNode(node: number): void {
        if (this.meshView) this.eye.lookAt(this.meshView.centreOf(node), this.meshView.unit * 60);
    }

    lookAtPoint(point: Point): void {
        if (this.meshView) this.eye.lookAt(this.toScene(point), this.meshView.unit * 160);
    }

    /** Hides what lies above a height of the scene's. */
    set cutHeight(height: number) {
        this.cut.constant = height;
        this.renderer.clippingPlanes = Number.isFinite(height) ? [this.cut] : [];
        this.isStale = true;
    }

    get cutHeight(): number {
        return this.cut.constant;
    }

    /** A point of the mesh's in the scene. */
    toScene(point: Point): THREE.Vector3 {
        const place = new THREE.Vector3(...point);
        return this.meshView ? this.meshView.group.localToWorld(place) : place;
    }

    /** Where a point of the mesh's is seen, in pixels of the page. */
    toScreen(point: Point): { x: number; y: number } {
        const place = this.toScene(point).project(this.camera);
        const box = this.canvas.getBoundingClientRect();
        return {
            x: box.left + ((place.x + 1) / 2) * box.width,
            y: box.top + ((1 - place.y) / 2) * box.height,
        };
    }

    /** Draws if something changed; returns whether it did. `time` is the frame's. */
    draw(time: number): boolean {
        this.eye.controls.update();
        this.pointer.hover();
        this.adaptToMachine(time);
        if (!this.isStale) return false;
        this.isStale = false;
        for (const marker of this.signs) marker.keepSize((place) => this.eye.unitsPerPixel(place));
        this.characters?.keepSize((place) => this.eye.unitsPerPixel(place));
        this.renderer.render(this.scene, this.camera);
        this.drawLabels();
        return true;
    }

    private noteMovement(): void {
        this.isStale = true;
        this.lastMovement = performance.now();
    }

    /** While the camera moves and frames take too long, the picture gets coarser. */
    private adaptToMachine(time: number): void {
        const isMoving = performance.now() - this.lastMovement < restAfter;
        if (isMoving && this.wasMoving && time - this.lastFrame > slowFrame) ++this.slowFrames;
        const isCoarse = isMoving && this.slowFrames > toleratedFrames;
        this.lastFrame = time;
        this.wasMoving = isMoving;
        if (isCoarse === this.isCoarse) return;
        this.isCoarse = isCoarse;
        this.meshView?.setCoarse(isCoarse);
        this.resize();
    }

    toPicture(): Promise<Blob | null> {
        this.lastMovement = 0;
        this.isStale = true;
        this.draw(0);
        const sheet = document.createElement("canvas");
        sheet.width = this.canvas.width;
        sheet.height = this.canvas.height;
        const context = sheet.getContext("2d")!;
        context.drawImage(this.canvas, 0, 0);
        context.drawImage(this.labels.canvas, 0, 0);
        return new Promise((resolve) => sheet.toBlob(resolve));
    }

    private resize(): void {
        const box = this.canvas.parentElement!.getBoundingClientRect();
        const ratio = Math.min(devicePixelRatio, 2);
        this.renderer.setPixelRatio(this.isCoarse ? ratio / 2 : ratio);
        this.renderer.setSize(box.width, box.height, false);
        this.labels.canvas.width = box.width * ratio;
        this.labels.canvas.height = box.height * ratio;
        this.eye.resize(box.width, box.height);
        this.isStale = true;
    }

    private drawLabels(): void {
        const ratio = this.labels.canvas.width / Math.max(this.canvas.clientWidth, 1);
        this.labels.draw(this.meshView, this.camera, ratio, (node, centre) => centre.y <= this.cutHeight && !!this.meshView?.isShown(node));
    }
}
