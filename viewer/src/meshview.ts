import * as THREE from "three";
import { centreOf, type MeshDescription } from "./meshlook";

export interface Palette {
    background: number;
    lowFloor: number;
    highFloor: number;
    islands: number[];
    link: number;
    wall: number;
    open: number;
    closed: number;
    path: number;
    mark: number;
    blocked: number;
    /** A character that walks, and one that waits for a path. */
    walker: number;
    waiting: number;
}

/** The direction up; where a broken mesh has none, y. */
function upOf({ normal }: MeshDescription): THREE.Vector3 {
    const up = new THREE.Vector3(...normal);
    return up.length() > 0 && Number.isFinite(up.length()) ? up.normalize() : new THREE.Vector3(0, 1, 0);
}

/** The side of a cube; where a broken mesh has none, one that suits its size. */
function unitOf({ cubeSize }: MeshDescription, positions: Float32Array): number {
    if (cubeSize > 0 && Number.isFinite(cubeSize)) return cubeSize;
    const size = new THREE.Box3().setFromArray(positions).getSize(new THREE.Vector3());
    return size.length() / 300;
}

/** The polygons and borders of a mesh, as three.js shows them. */
export class MeshView {
    readonly group = new THREE.Group();
    readonly fill: THREE.Mesh<THREE.BufferGeometry, THREE.MeshBasicMaterial>;
    readonly bounds = new THREE.Box3();
    private readonly walls: THREE.Mesh<THREE.BufferGeometry, THREE.MeshBasicMaterial>;
    private readonly links: THREE.LineSegments<THREE.BufferGeometry, THREE.LineBasicMaterial>;
    private readonly wallLines: THREE.LineSegments<THREE.BufferGeometry, THREE.LineBasicMaterial>;
    private readonly baseColours: Float32Array;
    private readonly colours: Float32Array;
    readonly up: THREE.Vector3;
    private hiddenIslands = new Set<number>();
    /** The scale of what is drawn on the mesh: the side of a cube. */
    readonly unit: number;

    constructor(
        readonly mesh: MeshDescription,
        palette: Palette,
    ) {
        this.up = upOf(mesh);
        this.group.quaternion.setFromUnitVectors(this.up, new THREE.Vector3(0, 1, 0));
        // a vertex for each corner of each node, so that nodes have colours of their own
        const positions = new Float32Array(mesh.corners.length * 3);
        mesh.corners.forEach((vertex, i) => positions.set(mesh.vertices.subarray(vertex * 3, vertex * 3 + 3), i * 3));
        this.baseColours = new Float32Array(positions.length);
        this.colours = new Float32Array(positions.length);
        const geometry = new THREE.BufferGeometry();
        geometry.setAttribute("position", new THREE.BufferAttribute(positions, 3));
        geometry.setAttribute("color", new THREE.BufferAttribute(this.colours, 3));
        geometry.setIndex(this.makeTriangles());
        this.unit = unitOf(mesh, positions);
        this.fill = new THREE.Mesh(
            geometry,
            new THREE.MeshBasicMaterial({
                vertexColors: true,
                side: THREE.DoubleSide,
                polygonOffset: true,
                polygonOffsetFactor: 1,
                polygonOffsetUnits: 1,
            }),
        );
        this.links = new THREE.LineSegments(
            this.makeLinks(),
            new THREE.LineBasicMaterial({ transparent: true, opacity: 0.55 }),
        );
        this.walls = new THREE.Mesh(
            this.makeWalls(),
            new THREE.MeshBasicMaterial({ side: THREE.DoubleSide, transparent: true, opacity: 0.8 }),
        );
        this.wallLines = new THREE.LineSegments(this.makeWallLines(), new THREE.LineBasicMaterial());
        this.group.add(this.fill, this.links, this.walls, this.wallLines);
        this.group.updateMatrixWorld();
        this.bounds.setFromObject(this.fill);
        this.paint(palette);
    }

    get nodeCount(): number {
        return this.mesh.firstCorners.length - 1;
    }

    centreOf(node: number): THREE.Vector3 {
        return this.group.localToWorld(new THREE.Vector3(...centreOf(this.mesh, node)));
    }

    isShown(node: number): boolean {
        return !this.hiddenIslands.has(this.mesh.islands[node]);
    }

    /** Leaves islands out, by their numbers. */
    hideIslands(islands: Set<number>): void {
        this.hiddenIslands = islands;
        this.fill.geometry.setIndex(this.makeTriangles());
        for (const [part, geometry] of [
            [this.links, this.makeLinks()],
            [this.walls, this.makeWalls()],
            [this.wallLines, this.makeWallLines()],
        ] as const) {
            part.geometry.dispose();
            part.geometry = geometry;
        }
    }

    /** Sets the colours of the palette, and none for what a search does. */
    paint(palette: Palette): void {
        const low = new THREE.Color(palette.lowFloor);
        const high = new THREE.Color(palette.highFloor);
        const colour = new THREE.Color();
        const { firstCorners } = this.mesh;
        const size = Math.max(this.bounds.max.y - this.bounds.min.y, 1e-6);
        for (let node = 0; node < this.nodeCount; ++node) {
            const island = this.mesh.islands[node];
            if (island === 0) colour.lerpColors(low, high, (this.centreOf(node).y - this.bounds.min.y) / size);
            else colour.set(palette.islands[(island - 1) % palette.islands.length]);
            // neighbours differ a little, so that polygons are told apart from afar
            colour.offsetHSL(0, 0, (((node * 2654435761) >>> 24) / 255 - 0.5) * 0.035);
            for (let i = firstCorners[node]; i < firstCorners[node + 1]; ++i)
                colour.toArray(this.baseColours, i * 3);
        }
        this.links.material.color.set(palette.link);
        this.walls.material.color.set(palette.wall);
        this.wallLines.material.color.set(palette.wall);
        this.showStates(new Uint8Array(), palette);
    }

    /** Colours nodes by their state in a search: 1 open, 2 closed. */
    showStates(states: Uint8Array, palette: Palette): void {
        const { firstCorners } = this.mesh;
        this.colours.set(this.baseColours);
        const tints = [null, new THREE.Color(palette.open), new THREE.Color(palette.closed)];
        const colour = new THREE.Color();
        states.forEach((state, node) => {
            const tint = tints[state];
            if (!tint) return;
            for (let i = firstCorners[node]; i < firstCorners[node + 1]; ++i)
                colour.fromArray(this.baseColours, i * 3).lerp(tint, 0.75).toArray(this.colours, i * 3);
        });
        this.fill.geometry.attributes.color.needsUpdate = true;
    }

    /** Lets what lies below shine through. */
    setTranslucent(isTranslucent: boolean): void {
        const material = this.fill.material;
        material.transparent = isTranslucent;
        material.opacity = isTranslucent ? 0.3 : 1;
        material.depthWrite = !isTranslucent;
        material.needsUpdate = true;
    }

    /** Leaves out what a slow machine can't draw in time while the camera moves. */
    setCoarse(isCoarse: boolean): void {
        this.links.visible = this.walls.visible = this.wallLines.visible = !isCoarse;
    }

    dispose(): void {
        for (const part of [this.fill, this.links, this.walls, this.wallLines]) {
            part.geometry.dispose();
            part.material.dispose();
        }
    }

    private cornerCount(node: number): number {
        return this.mesh.firstCorners[node + 1] - this.mesh.firstCorners[node];
    }

    private cornerAt(node: number, corner: number): Float32Array {
        const { firstCorners, corners, vertices } = this.mesh;
        const first = firstCorners[node];
        const vertex = corners[first + (corner % (firstCorners[node + 1] - first))];
        return vertices.subarray(vertex * 3, vertex * 3 + 3);
    }

    /** Calls `visit` for every border that is shown, with the node beyond, or below 0. */
    private forEachBorder(visit: (node: number, corner: number, beyond: number) => void): void {
        for (let node = 0; node < this.nodeCount; ++node)
            for (let i = 0; i < this.cornerCount(node) && this.isShown(node); ++i)
                visit(node, i, this.mesh.neighbours[this.mesh.firstCorners[node] + i]);
    }

    private makeTriangles(): number[] {
        const { firstCorners } = this.mesh;
        const triangles: number[] = [];
        for (let node = 0; node < this.nodeCount; ++node) {
            if (!this.isShown(node)) continue;
            const first = firstCorners[node];
            for (let i = first + 2; i < firstCorners[node + 1]; ++i) triangles.push(first, i - 1, i);
        }
        return triangles;
    }

    private makeLinks(): THREE.BufferGeometry {
        const points: number[] = [];
        this.forEachBorder((node, corner, beyond) => {
            if (beyond > node) points.push(...this.cornerAt(node, corner), ...this.cornerAt(node, corner + 1));
        });
        return new THREE.BufferGeometry().setAttribute(
            "position",
            new THREE.Float32BufferAttribute(points, 3),
        );
    }

    /** Borders without neighbour stand up as low fences. */
    private makeWalls(): THREE.BufferGeometry {
        const points: number[] = [];
        const triangles: number[] = [];
        const lift = this.up.clone().multiplyScalar(this.unit * 1.6);
        this.forEachBorder((node, corner, beyond) => {
            if (beyond >= 0) return;
            const first = points.length / 3;
            for (const i of [corner, corner + 1]) {
                const [x, y, z] = this.cornerAt(node, i);
                points.push(x, y, z, x + lift.x, y + lift.y, z + lift.z);
            }
            triangles.push(first, first + 2, first + 3, first, first + 3, first + 1);
        });
        return new THREE.BufferGeometry()
            .setAttribute("position", new THREE.Float32BufferAttribute(points, 3))
            .setIndex(triangles);
    }

    /** Seen from straight above fences are nothing: the lines at their feet remain. */
    private makeWallLines(): THREE.BufferGeometry {
        const points: number[] = [];
        this.forEachBorder((node, corner, beyond) => {
            if (beyond < 0) points.push(...this.cornerAt(node, corner), ...this.cornerAt(node, corner + 1));
        });
        return new THREE.BufferGeometry().setAttribute("position", new THREE.Float32BufferAttribute(points, 3));
    }
}
