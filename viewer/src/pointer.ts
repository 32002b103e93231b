import * as THREE from "three";
import type { Point } from "zunopathfinder/external";
import type { MeshView } from "./meshview";
import type { Marker, MarkerKind } from "./overlays";

/**
 * What is under the pointer, in the mesh's own coordinates: a place on the mesh, or, beside it, one
 * as high as the lowest floor.
 */
export interface Pick {
    point: Point;
    isOnMesh: boolean;
}

export interface PointerListener {
    onHover(pick: Pick | null): void;
    onClick(pick: Pick | null): void;
    /** While a sign is dragged; `isLast` when it is let go. */
    onDrag(marker: Marker, pick: Pick, isLast: boolean): void;
}

/** What the pointer works on. */
export interface Pickable {
    readonly camera: THREE.Camera;
    readonly shownMesh: MeshView | null;
    readonly markers: Marker[];
    /** What lies above is not seen. */
    readonly cutHeight: number;
    /** Whether the pointer moves the camera. */
    setCameraFree(isFree: boolean): void;
}

const clickTolerance = 4; // pixels; fingers have more
const tapTolerance = 10;

/** What the pointer does on the picture: hovers, clicks, and drags signs. */
export class Pointer {
    private readonly raycaster = new THREE.Raycaster();
    private pressed: { x: number; y: number; marker: Marker | null; isMoved: boolean } | null = null;
    private hoverAt: PointerEvent | null = null;
    private readonly down = new Set<number>(); // pointers

    constructor(
        private readonly canvas: HTMLCanvasElement,
        private readonly scene: Pickable,
        private readonly listener: PointerListener,
    ) {
        canvas.addEventListener("pointerdown", (event) => this.press(event), { capture: true });
        canvas.addEventListener("pointermove", (event) => this.move(event));
        canvas.addEventListener("pointerup", (event) => this.release(event));
        canvas.addEventListener("pointercancel", (event) => {
            this.down.delete(event.pointerId);
            this.letGo();
        });
        canvas.addEventListener("pointerleave", () => {
            this.hoverAt = null;
            this.listener.onHover(null);
        });
    }

    /** Goes on dragging with the sign that took the place of the one that was dragged. */
    regrip(kind: MarkerKind, owner: unknown): void {
        if (this.pressed?.marker)
            this.pressed.marker = this.scene.markers.find((marker) => marker.kind === kind && marker.owner === owner) ?? null;
    }

    /** At most once a frame: looking for what is under the pointer costs more than moving it. */
    hover(): void {
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

    /** What is seen at a place of the page. */
    pick(at: { clientX: number; clientY: number }): Pick | null {
        const { shownMesh, cutHeight } = this.scene;
        if (!shownMesh) return null;
        this.aim(at);
        const hit = this.raycaster.intersectObject(shownMesh.fill, false).find(({ point }) => point.y <= cutHeight);
        const floor = new THREE.Plane(new THREE.Vector3(0, 1, 0), -shownMesh.bounds.min.y);
        const place = hit?.point ?? this.raycaster.ray.intersectPlane(floor, new THREE.Vector3());
        if (!place) return null;
        const local = shownMesh.group.worldToLocal(place.clone());
        return { point: local.toArray().map(Math.fround) as Point, isOnMesh: !!hit };
    }

    private aim({ clientX, clientY }: { clientX: number; clientY: number }): void {
        const box = this.canvas.getBoundingClientRect();
        const x = ((clientX - box.left) / box.width) * 2 - 1;
        const y = 1 - ((clientY - box.top) / box.height) * 2;
        this.raycaster.setFromCamera(new THREE.Vector2(x, y), this.scene.camera);
    }

    private pickMarker(event: PointerEvent): Marker | null {
        this.aim(event);
        const { markers } = this.scene;
        const [hit] = this.raycaster.intersectObjects(markers.map((marker) => marker.mesh), false);
        return markers.find((marker) => marker.mesh === hit?.object && marker.owner !== null) ?? null;
    }

    private press(event: PointerEvent): void {
        this.down.add(event.pointerId);
        const isAlone = this.down.size === 1;
        if (!isAlone) this.letGo(); // two fingers move the camera
        if (!isAlone || event.button !== 0) return;
        const marker = this.pickMarker(event);
        this.pressed = { x: event.clientX, y: event.clientY, marker, isMoved: false };
        this.scene.setCameraFree(marker === null);
        if (marker) this.canvas.setPointerCapture(event.pointerId);
    }

    private move(event: PointerEvent): void {
        this.hoverAt = event;
        if (!this.pressed) return;
        const { x, y } = this.pressed;
        const tolerance = event.pointerType === "touch" ? tapTolerance : clickTolerance;
        this.pressed.isMoved ||= Math.hypot(event.clientX - x, event.clientY - y) > tolerance;
    }

    private release(event: PointerEvent): void {
        this.down.delete(event.pointerId);
        const pressed = this.letGo();
        if (!pressed || event.button !== 0) return;
        const pick = this.pick(event);
        if (pressed.marker) {
            if (pick) this.listener.onDrag(pressed.marker, pick, true);
        } else if (!pressed.isMoved) {
            this.listener.onClick(pick);
        }
    }

    private letGo(): typeof this.pressed {
        const pressed = this.pressed;
        this.pressed = null;
        this.scene.setCameraFree(true);
        return pressed;
    }
}
