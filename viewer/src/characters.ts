import * as THREE from "three";
import type { MeshDescription } from "./meshlook";

const smallest = 11; // pixels, from head to foot

/** How tall those are that a mesh is for. */
export function heightOfCharacters({ tables, cubeSize }: MeshDescription): number {
    return tables.characters.find(({ height }) => height > 0 && Number.isFinite(height))?.height ?? cubeSize * 7;
}

/** Characters on the ground, who are never too small to be seen. */
export class Characters {
    readonly mesh: THREE.InstancedMesh<THREE.BufferGeometry, THREE.MeshBasicMaterial>;
    private readonly places: THREE.Vector3[];
    private readonly height: number;

    constructor(count: number, mesh: MeshDescription) {
        // one unit high, standing on its place
        const body = new THREE.CapsuleGeometry(0.22, 0.56, 4, 10).translate(0, 0.5, 0);
        this.mesh = new THREE.InstancedMesh(body, new THREE.MeshBasicMaterial(), count);
        this.mesh.frustumCulled = false;
        this.mesh.renderOrder = 4;
        this.places = Array.from({ length: count }, () => new THREE.Vector3());
        this.height = heightOfCharacters(mesh);
        for (let i = 0; i < count; ++i) this.mesh.setColorAt(i, new THREE.Color(0xffffff));
    }

    place(index: number, position: THREE.Vector3, colour: THREE.Color): void {
        this.places[index].copy(position);
        this.mesh.setColorAt(index, colour);
    }

    /** `unitsPerPixel` tells what a pixel measures at a place. */
    keepSize(unitsPerPixel: (place: THREE.Vector3) => number): void {
        const matrix = new THREE.Matrix4();
        this.places.forEach((place, i) => {
            const size = Math.max(this.height, smallest * unitsPerPixel(place));
            this.mesh.setMatrixAt(i, matrix.makeScale(size, size, size).setPosition(place));
        });
        this.mesh.instanceMatrix.needsUpdate = true;
        if (this.mesh.instanceColor) this.mesh.instanceColor.needsUpdate = true;
    }

    dispose(): void {
        this.mesh.removeFromParent();
        this.mesh.geometry.dispose();
        this.mesh.material.dispose();
        this.mesh.dispose();
    }
}
