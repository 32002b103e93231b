import * as THREE from "three";
import { OBJLoader } from "three/examples/jsm/loaders/OBJLoader.js";
import type { MeshView } from "./meshview";
import type { View } from "./view";

const ground = new THREE.Color(0x8a8a8a);
const steep = 0.55; // of the ground's lightness, for what stands upright
const roofOpacity = 0.12;

/** The triangles of a Wavefront OBJ file, nine numbers each. */
export function readScene(text: string): Float32Array {
    const numbers: number[] = [];
    new OBJLoader().parse(text).traverse((part) => {
        if (!(part instanceof THREE.Mesh)) return; // lines and points are no ground
        for (const number of (part.geometry as THREE.BufferGeometry).attributes.position.array) numbers.push(number);
    });
    if (numbers.length === 0) throw new Error("there are no triangles in it");
    return new Float32Array(numbers);
}

/** Shows a scene's triangles, nine numbers each, under the mesh that is shown. */
export function showScene(view: View, triangles: Float32Array): void {
    if (view.shownMesh) view.setScene(new SceneView(triangles, view.shownMesh));
}

/**
 * The scene that a mesh was made of, in grey under the mesh, and in its coordinates. What lies above
 * the roof's height is seen through.
 */
export class SceneView {
    readonly group = new THREE.Group();
    private readonly geometry = new THREE.BufferGeometry();
    private readonly below = new THREE.Plane(new THREE.Vector3(0, -1, 0), Infinity);
    private readonly above = new THREE.Plane(new THREE.Vector3(0, 1, 0), -Infinity);

    constructor(triangles: Float32Array, { up, unit }: MeshView) {
        this.geometry.setAttribute("position", new THREE.BufferAttribute(triangles, 3));
        this.geometry.setAttribute("color", new THREE.BufferAttribute(this.shade(triangles, up), 3));
        const style = { vertexColors: true, side: THREE.DoubleSide, polygonOffset: true, polygonOffsetFactor: 2, polygonOffsetUnits: 4 };
        const solid = new THREE.MeshBasicMaterial({ ...style, clippingPlanes: [this.below] });
        const roofs = new THREE.MeshBasicMaterial({
            ...style, clippingPlanes: [this.above], transparent: true, opacity: roofOpacity, depthWrite: false,
        });
        this.group.add(new THREE.Mesh(this.geometry, solid), new THREE.Mesh(this.geometry, roofs));
        this.group.position.copy(up).multiplyScalar(-unit / 2); // the mesh lies on it
    }

    /** Sets the height, in the picture, above which it is seen through. */
    set roof(height: number) {
        this.below.constant = height;
        this.above.constant = -height;
    }

    get roof(): number {
        return this.below.constant;
    }

    dispose(): void {
        this.group.removeFromParent();
        this.geometry.dispose();
        for (const part of this.group.children as THREE.Mesh<THREE.BufferGeometry, THREE.Material>[]) part.material.dispose();
    }

    /** Greys by how steep each triangle is. */
    private shade(triangles: Float32Array, up: THREE.Vector3): Float32Array {
        const colours = new Float32Array(triangles.length);
        const triangle = new THREE.Triangle();
        const normal = new THREE.Vector3();
        for (let i = 0; i < triangles.length; i += 9) {
            triangle.a.fromArray(triangles, i);
            triangle.b.fromArray(triangles, i + 3);
            triangle.c.fromArray(triangles, i + 6);
            const flatness = Math.abs(triangle.getNormal(normal).dot(up));
            const colour = ground.clone().multiplyScalar(steep + (1 - steep) * flatness);
            for (let corner = 0; corner < 9; corner += 3) colour.toArray(colours, i + corner);
        }
        return colours;
    }
}
