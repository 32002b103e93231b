import * as THREE from "three";
import { Line2 } from "three/examples/jsm/lines/Line2.js";
import { LineGeometry } from "three/examples/jsm/lines/LineGeometry.js";
import { LineMaterial } from "three/examples/jsm/lines/LineMaterial.js";
import type { Point } from "zunopathfinder/external";
import type { MeshDescription } from "./meshlook";
import type { Palette } from "./meshview";
import type { BlockingGrid } from "./world";

/** A line of the same width from afar and near, a little above the ground. */
export function makePolyline(points: Point[], colour: THREE.ColorRepresentation, mesh: MeshDescription,
                             style: { width: number; isDashed?: boolean; opacity?: number }): Line2 {
    const lift = new THREE.Vector3(...mesh.normal).multiplyScalar(mesh.cubeSize * 0.8);
    const geometry = new LineGeometry();
    geometry.setPositions(points.flatMap(([x, y, z]) => [x + lift.x, y + lift.y, z + lift.z]));
    const material = new LineMaterial({ color: colour, linewidth: style.width, dashed: !!style.isDashed,
                                        transparent: style.opacity !== undefined, opacity: style.opacity ?? 1,
                                        dashSize: mesh.cubeSize * 3, gapSize: mesh.cubeSize * 2 });
    const line = new Line2(geometry, material);
    line.computeLineDistances();
    line.renderOrder = 2;
    return line;
}

export function disposeLine(line: Line2): void {
    line.geometry.dispose();
    line.material.dispose();
}

export type MarkerKind = "start" | "goal" | "rayStart" | "rayEnd" | "hit" | "focus";

const shapes: Record<MarkerKind, () => THREE.BufferGeometry> = {
    start: () => new THREE.SphereGeometry(1, 16, 12).translate(0, 0.6, 0),
    goal: () => new THREE.ConeGeometry(1, 2.6, 16).rotateX(Math.PI).translate(0, 1.3, 0),
    rayStart: () => new THREE.BoxGeometry(1.4, 1.4, 1.4).translate(0, 0.7, 0),
    rayEnd: () => new THREE.OctahedronGeometry(1).translate(0, 0.8, 0),
    hit: () => new THREE.SphereGeometry(0.8, 12, 8),
    focus: () => new THREE.TorusGeometry(2, 0.3, 8, 32).rotateX(Math.PI / 2),
};

/** A sign on the ground that keeps its size on the screen. */
export class Marker {
    readonly mesh: THREE.Mesh<THREE.BufferGeometry, THREE.MeshBasicMaterial>;

    constructor(
        readonly kind: MarkerKind,
        colour: THREE.ColorRepresentation,
        position: THREE.Vector3,
        /** What it belongs to; the same for all signs of one thing. */
        readonly owner: unknown = null,
    ) {
        this.mesh = new THREE.Mesh(shapes[kind](), new THREE.MeshBasicMaterial({ color: colour }));
        this.mesh.position.copy(position);
        this.mesh.renderOrder = 3;
        this.mesh.material.depthTest = false;
        this.mesh.material.transparent = true; // after the ground, whatever its depth
    }

    /** `unitsPerPixel` tells what a pixel measures at a place. */
    keepSize(unitsPerPixel: (place: THREE.Vector3) => number): void {
        this.mesh.scale.setScalar(7 * unitsPerPixel(this.mesh.position));
    }

    dispose(): void {
        this.mesh.geometry.dispose();
        this.mesh.material.dispose();
    }
}

/** The blocking grid as a flat picture below the mesh: blocked cells, and free ones by height. */
export function makeGridPicture(grid: BlockingGrid, mesh: MeshDescription, palette: Palette,
                                lowest: number): THREE.Mesh<THREE.PlaneGeometry, THREE.MeshBasicMaterial> {
    const { columns, rows, heights } = grid;
    let low = Infinity;
    let high = -Infinity;
    for (const height of heights)
        if (!Number.isNaN(height)) {
            low = Math.min(low, height);
            high = Math.max(high, height);
        }
    const pixels = new Uint8Array(columns * rows * 4);
    const blocked = new THREE.Color(palette.blocked);
    const free = [new THREE.Color(palette.lowFloor), new THREE.Color(palette.highFloor)];
    const colour = new THREE.Color();
    heights.forEach((height, i) => {
        const isBlocked = Number.isNaN(height);
        if (isBlocked) colour.copy(blocked);
        else colour.lerpColors(free[0], free[1], (height - low) / Math.max(high - low, 1e-6));
        const rgb = colour.clone().convertLinearToSRGB();
        // a chequered shade shows the cells
        const shade = ((i % columns) + Math.floor(i / columns)) % 2 ? 1 : 0.94;
        pixels.set([rgb.r * 255 * shade, rgb.g * 255 * shade, rgb.b * 255 * shade, isBlocked ? 110 : 235], i * 4);
    });
    const texture = new THREE.DataTexture(pixels, columns, rows);
    texture.colorSpace = THREE.SRGBColorSpace;
    texture.needsUpdate = true;
    const width = columns * grid.side;
    const depth = rows * grid.side;
    const picture = new THREE.Mesh(
        new THREE.PlaneGeometry(width, depth),
        new THREE.MeshBasicMaterial({ map: texture, transparent: true, side: THREE.DoubleSide, depthWrite: false }),
    );
    // the plane's axes carry it; it lies right below the lowest floor
    const x = new THREE.Vector3(...mesh.xAxis);
    const y = new THREE.Vector3(...mesh.yAxis);
    const up = new THREE.Vector3(...mesh.normal);
    picture.matrixAutoUpdate = false;
    const middle = new THREE.Vector3()
        .addScaledVector(x, grid.x + width / 2)
        .addScaledVector(y, grid.y + depth / 2)
        .addScaledVector(up, lowest - mesh.cubeSize * 0.4);
    picture.matrix.makeBasis(x, y, up).setPosition(middle);
    return picture;
}
