import * as THREE from "three";
import { OrbitControls } from "three/examples/jsm/controls/OrbitControls.js";
import type { Line2 } from "three/examples/jsm/lines/Line2.js";
import type { Vec3 } from "./engine";
import { MeshView, Palette } from "./meshview";
import { disposeLine, Marker, MarkerKind } from "./overlays";

/**
 * What is under the pointer, in the mesh's own coordinates: a place on the mesh, or, beside it, one
 * as high as the lowest floor.
 */
export interface Pick {
    point: Vec3;
    isOnMesh: boolean;
}

export interface ViewListener {
    onHover(pick: Pick | null): void;
    onClick(pick: Pick | null): void;
    /** While a sign is dragged; `isLast` when it is let go. */
    onDrag(marker: Marker, pick: Pick, isLast: boolean): void;
    onCameraMoved(): void;
}

const clickTolerance = 4; // pixels
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

/** The picture: camera, controls, what is drawn, and what the pointer does on it. */
export class View {
    readonly camera = new THREE.PerspectiveCamera(45, 1, 0.1, 1e5);
    private readonly isDrawnByProcessor = isDrawnByProcessor();
    private readonly renderer: THREE.WebGLRenderer;
    private readonly scene = new THREE.Scene();
    private readonly controls: OrbitControls;
    private readonly raycaster = new THREE.Raycaster();
    private readonly labels: CanvasRenderingContext2D;
    private meshView: MeshView | null = null;
    private lines: Line2[] = [];
    private markers: Marker[] = [];
    private overlay: THREE.Mesh<THREE.BufferGeometry, THREE.MeshBasicMaterial> | null = null;
    private isStale = true;
    private showsLabels = false;
    private labelColour = "#000";
    private topView = false;
    private pressed: { x: number; y: number; marker: Marker | null; isMoved: boolean } | null = null;
    private hoverAt: PointerEvent | null = null;
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
        this.labels = labelCanvas.getContext("2d")!;
        this.controls = new OrbitControls(this.camera, canvas);
        this.controls.maxPolarAngle = Math.PI * 0.495;
        this.controls.zoomToCursor = true;
        this.controls.addEventListener("change", () => {
            this.noteMovement();
            this.listener.onCameraMoved();
        });
        new ResizeObserver(() => this.resize()).observe(canvas.parentElement!);
        canvas.addEventListener("pointerdown", (event) => this.press(event), { capture: true });
        canvas.addEventListener("pointermove", (event) => this.move(event));
        canvas.addEventListener("pointerup", (event) => this.release(event));
        canvas.addEventListener("pointerleave", () => {
            this.hoverAt = null;
            this.listener.onHover(null);
        });
        this.resize();
    }

    /** Shows a mesh instead of the last one. */
    show(meshView: MeshView | null): void {
        if (this.meshView) {
            this.scene.remove(this.meshView.group);
            this.meshView.dispose();
        }
        this.setOverlay(null);
        this.setSigns([], []);
        this.meshView = meshView;
        const isTooMuch = this.isDrawnByProcessor && (meshView?.nodeCount ?? 0) > manyNodes;
        this.slowFrames = isTooMuch ? toleratedFrames + 1 : 0; // nothing to learn by dropping frames
        if (meshView) this.scene.add(meshView.group);
        this.isStale = true;
    }

    setPalette(palette: Palette): void {
        this.scene.background = new THREE.Color(palette.background);
        this.labelColour = palette.background > 0x808080 ? "#1c2733" : "#e6edf3";
        this.isStale = true;
    }

    /** Paths, rays and signs, instead of the last ones. */
    setSigns(lines: Line2[], markers: Marker[]): void {
        for (const line of this.lines) {
            line.removeFromParent();
            disposeLine(line);
        }
        for (const marker of this.markers) {
            marker.mesh.removeFromParent();
            marker.dispose();
        }
        this.lines = lines;
        this.markers = markers;
        for (const line of lines) this.meshView?.group.add(line);
        for (const marker of markers) this.scene.add(marker.mesh);
        this.isStale = true;
    }

    /** Goes on dragging with the sign that took the place of the one that was dragged. */
    regrip(kind: MarkerKind, owner: unknown): void {
        if (this.pressed?.marker)
            this.pressed.marker = this.markers.find((marker) => marker.kind === kind && marker.owner === owner) ?? null;
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
        this.showsLabels = isOn;
        this.isStale = true;
    }

    invalidate(): void {
        this.isStale = true;
    }

    get isTopView(): boolean {
        return this.topView;
    }

    setTopView(isTop: boolean): void {
        this.topView = isTop;
        this.controls.enableRotate = !isTop;
        this.controls.mouseButtons.LEFT = isTop ? THREE.MOUSE.PAN : THREE.MOUSE.ROTATE;
        this.fit();
    }

    /** Moves the camera so that the whole mesh is seen. */
    fit(): void {
        const bounds = this.meshView?.bounds;
        if (!bounds || bounds.isEmpty()) return;
        const centre = bounds.getCenter(new THREE.Vector3());
        const size = bounds.getSize(new THREE.Vector3()).length();
        const corners = [0, 1, 2, 3, 4, 5, 6, 7].map(
            (i) =>
                new THREE.Vector3(
                    (i & 1 ? bounds.max : bounds.min).x,
                    (i & 2 ? bounds.max : bounds.min).y,
                    (i & 4 ? bounds.max : bounds.min).z,
                ),
        );
        // from straight above the picture has the plane's first axis to the right
        const direction = (this.topView ? new THREE.Vector3(0, 1, 1e-4) : new THREE.Vector3(0.3, 0.8, 0.8)).normalize();
        this.camera.near = size / 500;
        this.camera.far = size * 20;
        this.camera.updateProjectionMatrix();
        this.controls.maxDistance = size * 8;
        // nearer and nearer, as long as everything is seen
        const room = 0.93;
        for (let distance = size * 4; distance > size * 0.2; distance *= 0.97) {
            this.place(centre.clone().addScaledVector(direction, distance), centre);
            this.camera.updateMatrixWorld();
            const seen = corners.map((corner) => corner.clone().project(this.camera));
            if (seen.some((point) => Math.abs(point.x) > room || Math.abs(point.y) > room)) break;
        }
    }

    /** Looks at a node from near. */
    lookAtNode(node: number): void {
        if (!this.meshView) return;
        const centre = this.meshView.centreOf(node);
        const away = this.camera.position.clone().sub(this.controls.target);
        away.setLength(Math.min(away.length(), this.meshView.unit * 60));
        this.place(centre.clone().add(away), centre);
    }

    get cameraState(): [Vec3, Vec3] {
        return [this.camera.position.toArray(), this.controls.target.toArray()];
    }

    set cameraState([position, target]: [Vec3, Vec3]) {
        this.place(new THREE.Vector3(...position), new THREE.Vector3(...target));
    }

    /** A point of the mesh's in the scene. */
    toScene(point: Vec3): THREE.Vector3 {
        const place = new THREE.Vector3(...point);
        return this.meshView ? this.meshView.group.localToWorld(place) : place;
    }

    /** Where a point of the mesh's is seen, in pixels of the page. */
    toScreen(point: Vec3): { x: number; y: number } {
        const place = this.toScene(point).project(this.camera);
        const box = this.canvas.getBoundingClientRect();
        return {
            x: box.left + ((place.x + 1) / 2) * box.width,
            y: box.top + ((1 - place.y) / 2) * box.height,
        };
    }

    /** Draws if something changed; returns whether it did. `time` is the frame's. */
    draw(time: number): boolean {
        this.controls.update();
        this.hover();
        this.adaptToMachine(time);
        if (!this.isStale) return false;
        this.isStale = false;
        for (const marker of this.markers) marker.keepSize((place) => this.unitsPerPixel(place));
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

    private place(position: THREE.Vector3, target: THREE.Vector3): void {
        this.camera.position.copy(position);
        this.controls.target.copy(target);
        this.controls.update();
        this.noteMovement();
        this.listener.onCameraMoved();
    }

    private unitsPerPixel(point: THREE.Vector3): number {
        const distance = this.camera.position.distanceTo(point);
        const tangent = Math.tan((this.camera.fov * Math.PI) / 360);
        return (2 * distance * tangent) / this.canvas.clientHeight;
    }

    private resize(): void {
        const box = this.canvas.parentElement!.getBoundingClientRect();
        const ratio = Math.min(devicePixelRatio, 2);
        this.renderer.setPixelRatio(this.isCoarse ? ratio / 2 : ratio);
        this.renderer.setSize(box.width, box.height, false);
        this.labels.canvas.width = box.width * ratio;
        this.labels.canvas.height = box.height * ratio;
        this.camera.aspect = box.width / Math.max(box.height, 1);
        this.camera.updateProjectionMatrix();
        this.isStale = true;
    }

    private aim(event: PointerEvent): void {
        const box = this.canvas.getBoundingClientRect();
        const x = ((event.clientX - box.left) / box.width) * 2 - 1;
        const y = 1 - ((event.clientY - box.top) / box.height) * 2;
        this.raycaster.setFromCamera(new THREE.Vector2(x, y), this.camera);
    }

    private pick(event: PointerEvent): Pick | null {
        if (!this.meshView) return null;
        this.aim(event);
        const [hit] = this.raycaster.intersectObject(this.meshView.fill, false);
        const floor = new THREE.Plane(new THREE.Vector3(0, 1, 0), -this.meshView.bounds.min.y);
        const place = hit?.point ?? this.raycaster.ray.intersectPlane(floor, new THREE.Vector3());
        if (!place) return null;
        const local = this.meshView.group.worldToLocal(place.clone());
        return { point: local.toArray().map(Math.fround) as Vec3, isOnMesh: !!hit };
    }

    private pickMarker(event: PointerEvent): Marker | null {
        this.aim(event);
        const [hit] = this.raycaster.intersectObjects(this.markers.map((marker) => marker.mesh), false);
        return this.markers.find((marker) => marker.mesh === hit?.object && marker.owner !== null) ?? null;
    }

    private press(event: PointerEvent): void {
        if (event.button !== 0) return;
        const marker = this.pickMarker(event);
        this.pressed = { x: event.clientX, y: event.clientY, marker, isMoved: false };
        this.controls.enabled = marker === null;
        if (marker) this.canvas.setPointerCapture(event.pointerId);
    }

    private move(event: PointerEvent): void {
        this.hoverAt = event;
        if (!this.pressed) return;
        const { x, y } = this.pressed;
        this.pressed.isMoved ||= Math.hypot(event.clientX - x, event.clientY - y) > clickTolerance;
    }

    private release(event: PointerEvent): void {
        const pressed = this.pressed;
        this.pressed = null;
        this.controls.enabled = true;
        if (!pressed || event.button !== 0) return;
        const pick = this.pick(event);
        if (pressed.marker) {
            if (pick) this.listener.onDrag(pressed.marker, pick, true);
        } else if (!pressed.isMoved) {
            this.listener.onClick(pick);
        }
    }

    /** At most once a frame: looking for what is under the pointer costs more than moving it. */
    private hover(): void {
        const event = this.hoverAt;
        if (!event) return;
        this.hoverAt = null;
        if (this.pressed && !this.pressed.marker) return; // the camera moves
        const pick = this.pick(event);
        if (this.pressed?.marker && this.pressed.isMoved && pick)
            this.listener.onDrag(this.pressed.marker, pick, false);
        this.canvas.style.cursor = this.pressed?.marker || this.pickMarker(event) ? "grab" : "crosshair";
        this.listener.onHover(pick);
    }

    private drawLabels(): void {
        const { canvas } = this.labels;
        this.labels.clearRect(0, 0, canvas.width, canvas.height);
        if (!this.showsLabels || !this.meshView) return;
        const ratio = canvas.width / Math.max(this.canvas.clientWidth, 1);
        this.labels.font = `${11 * ratio}px ui-monospace, monospace`;
        this.labels.textAlign = "center";
        this.labels.textBaseline = "middle";
        this.labels.fillStyle = this.labelColour;
        // one label in each patch of the picture: more could not be read
        const taken = new Set<number>();
        const place = new THREE.Vector3();
        for (let node = 0; node < this.meshView.nodeCount; ++node) {
            place.copy(this.meshView.centreOf(node)).project(this.camera);
            if (Math.abs(place.x) > 1 || Math.abs(place.y) > 1 || place.z > 1) continue;
            const x = ((place.x + 1) / 2) * canvas.width;
            const y = ((1 - place.y) / 2) * canvas.height;
            const patch = Math.floor(x / (34 * ratio)) * 4096 + Math.floor(y / (16 * ratio));
            if (taken.has(patch)) continue;
            taken.add(patch);
            this.labels.fillText(String(node), x, y);
        }
    }
}
