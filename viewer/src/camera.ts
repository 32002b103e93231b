import * as THREE from "three";
import { OrbitControls } from "three/examples/jsm/controls/OrbitControls.js";
import type { Point } from "zunopathfinder/external";

const halfAngle = (45 / 2) * (Math.PI / 180);

function cornersOf({ min, max }: THREE.Box3): THREE.Vector3[] {
    return [0, 1, 2, 3, 4, 5, 6, 7].map(
        (i) => new THREE.Vector3((i & 1 ? max : min).x, (i & 2 ? max : min).y, (i & 4 ? max : min).z),
    );
}

/** Where the picture is seen from: in perspective, or from straight above without. */
export class Eye {
    readonly controls: OrbitControls;
    private readonly perspective = new THREE.PerspectiveCamera((halfAngle * 360) / Math.PI, 1, 0.1, 1e5);
    /** Its frustum is one unit high in both directions; the zoom does the rest. */
    private readonly orthographic = new THREE.OrthographicCamera(-1, 1, 1, -1, 0, 1e5);
    private bounds = new THREE.Box3();
    private isTop = false;
    private height = 1; // of the picture, in pixels

    constructor(canvas: HTMLCanvasElement, onChange: () => void) {
        this.controls = new OrbitControls(this.perspective, canvas);
        this.controls.maxPolarAngle = Math.PI * 0.495;
        this.controls.zoomToCursor = true;
        this.controls.addEventListener("change", onChange);
    }

    get camera(): THREE.PerspectiveCamera | THREE.OrthographicCamera {
        return this.isTop ? this.orthographic : this.perspective;
    }

    get isTopView(): boolean {
        return this.isTop;
    }

    setTopView(isTop: boolean): void {
        this.isTop = isTop;
        this.controls.object = this.camera;
        this.controls.enableRotate = !isTop;
        this.controls.mouseButtons.LEFT = isTop ? THREE.MOUSE.PAN : THREE.MOUSE.ROTATE;
        this.controls.touches.ONE = isTop ? THREE.TOUCH.PAN : THREE.TOUCH.ROTATE;
        this.fit();
    }

    /** What there is to see. */
    setBounds(bounds: THREE.Box3): void {
        this.bounds = bounds;
        const size = this.size;
        this.perspective.near = size / 500;
        this.perspective.far = size * 20;
        this.orthographic.far = size * 8;
        this.controls.maxDistance = size * 8;
        this.controls.minZoom = 0.2 / size;
    }

    resize(width: number, height: number): void {
        this.height = Math.max(height, 1);
        this.perspective.aspect = width / this.height;
        this.orthographic.right = width / this.height;
        this.orthographic.left = -this.orthographic.right;
        this.perspective.updateProjectionMatrix();
        this.orthographic.updateProjectionMatrix();
    }

    /** Moves so that everything is seen. */
    fit(): void {
        if (this.bounds.isEmpty()) return;
        const centre = this.bounds.getCenter(new THREE.Vector3());
        // from straight above the picture has the plane's first axis to the right
        const direction = this.isTop ? new THREE.Vector3(0, 1, 0) : new THREE.Vector3(0.3, 0.8, 0.8).normalize();
        const corners = cornersOf(this.bounds);
        // nearer and nearer, as long as everything is seen
        const room = 0.93;
        for (let distance = this.size * 4; distance > this.size * 0.2; distance *= 0.97) {
            this.place(centre.clone().addScaledVector(direction, distance), centre);
            this.camera.updateMatrixWorld();
            const seen = corners.map((corner) => corner.clone().project(this.camera));
            if (seen.some((point) => Math.abs(point.x) > room || Math.abs(point.y) > room)) break;
        }
    }

    /** Looks at a place from near, `distance` away at most. */
    lookAt(place: THREE.Vector3, distance: number): void {
        const [position, target] = this.state.map((point) => new THREE.Vector3(...point));
        const away = position.sub(target);
        away.setLength(Math.min(away.length(), distance));
        this.place(place.clone().add(away), place);
    }

    /** Moves by pixels of the picture, as if it was dragged along the ground. */
    pan(right: number, up: number): void {
        const unit = this.unitsPerPixel(this.controls.target);
        const sideways = new THREE.Vector3().setFromMatrixColumn(this.camera.matrixWorld, 0);
        const ahead = new THREE.Vector3(0, 1, 0).cross(sideways);
        const way = sideways.multiplyScalar(right * unit).addScaledVector(ahead, up * unit);
        const [position, target] = this.state.map((point) => new THREE.Vector3(...point).add(way));
        this.place(position, target);
    }

    /** Comes closer by a factor; further away below 1. */
    approach(factor: number): void {
        const [position, target] = this.state.map((point) => new THREE.Vector3(...point));
        this.place(position.sub(target).divideScalar(factor).add(target), target);
    }

    /** Place and target; without perspective the place from which one would see as much with it. */
    get state(): [Point, Point] {
        const { target } = this.controls;
        if (!this.isTop) return [this.camera.position.toArray(), target.toArray()];
        const distance = 1 / (this.orthographic.zoom * Math.tan(halfAngle));
        return [[target.x, target.y + distance, target.z], target.toArray()];
    }

    set state([position, target]: [Point, Point]) {
        this.place(new THREE.Vector3(...position), new THREE.Vector3(...target));
    }

    /** What a pixel measures at a place. */
    unitsPerPixel(place: THREE.Vector3): number {
        const halfHeight = this.isTop
            ? 1 / this.orthographic.zoom
            : this.camera.position.distanceTo(place) * Math.tan(halfAngle);
        return (2 * halfHeight) / this.height;
    }

    private get size(): number {
        return Math.max(this.bounds.getSize(new THREE.Vector3()).length(), 1e-3);
    }

    private place(position: THREE.Vector3, target: THREE.Vector3): void {
        this.controls.target.copy(target);
        if (this.isTop) {
            this.orthographic.zoom = 1 / (position.distanceTo(target) * Math.tan(halfAngle));
            const above = new THREE.Vector3(0, 1, 1e-4).multiplyScalar(this.size * 3);
            this.camera.position.copy(target).add(above);
        } else {
            this.camera.position.copy(position);
        }
        this.camera.updateProjectionMatrix();
        this.controls.update();
        this.controls.dispatchEvent({ type: "change" });
    }
}
