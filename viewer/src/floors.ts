import type { Point } from "zunopathfinder/external";
import { heightOfCharacters } from "./characters";
import { shortText } from "./format";
import type { MeshDescription } from "./meshlook";
import { element, setText } from "./panel";
import type { View } from "./view";

const mostListed = 30;

/** What is left out of the picture: all above a height, and islands. */
export class Floors {
    private mesh: MeshDescription | null = null;
    private readonly hidden = new Set<number>();

    constructor(
        private readonly view: View,
        private readonly onChange: () => void,
    ) {
        const slider = element<HTMLInputElement>("cut");
        slider.addEventListener("input", () => this.cutAt(this.heightAt(Number(slider.value) / 1000)));
        element("islandsAll").addEventListener("click", () => this.hideAll(() => false));
        element("islandsLargest").addEventListener("click", () => this.hideAll((island) => island > 0));
    }

    /** Begins anew with a mesh. */
    show(mesh: MeshDescription): void {
        this.mesh = mesh;
        this.hidden.clear();
        this.cutAt(null);
        const { min, max } = this.view.shownMesh!.bounds;
        element("cutBox").hidden = !(max.y - min.y > mesh.cubeSize * 4);
        this.showIslands();
    }

    /** The height, in the scene, above which nothing is shown; null: everything is. */
    get cut(): number | null {
        return Number.isFinite(this.view.cutHeight) ? this.view.cutHeight : null;
    }

    cutAt(height: number | null): void {
        this.view.cutHeight = height ?? Infinity;
        setText("cutText", height === null ? "all" : shortText(Number(height.toFixed(1))));
        element<HTMLInputElement>("cut").value = String(height === null ? 1000 : 1000 * this.partAt(height));
        this.onChange();
    }

    /** Hides what is above the head of one who stands at a point; shows it when it was hidden. */
    toggleAbove(point: Point | null): void {
        if (this.cut !== null) this.cutAt(null);
        else if (point && this.mesh) {
            const head = Math.max(...this.mesh.tables.heights.filter(Number.isFinite), this.mesh.cubeSize * 4);
            this.cutAt(this.view.toScene(point).y + head);
        }
    }

    /** Sees through the roofs above one who stands at a point. */
    uncover(point: Point): void {
        if (!this.view.shownScene || !this.mesh) return;
        this.view.shownScene.roof = this.view.toScene(point).y + heightOfCharacters(this.mesh);
        this.view.invalidate();
    }

    private heightAt(part: number): number | null {
        const { min, max } = this.view.shownMesh!.bounds;
        return part >= 1 ? null : min.y + (max.y - min.y) * part + this.mesh!.cubeSize / 2;
    }

    private partAt(height: number): number {
        const { min, max } = this.view.shownMesh!.bounds;
        return Math.min(Math.max((height - min.y) / (max.y - min.y), 0), 0.999);
    }

    private hideAll(isHidden: (island: number) => boolean): void {
        this.hidden.clear();
        for (const island of this.sizes.keys()) if (isHidden(island)) this.hidden.add(island);
        this.apply();
    }

    private apply(): void {
        this.view.shownMesh?.hideIslands(new Set(this.hidden));
        this.showIslands();
        this.onChange();
    }

    /** Nodes of each island. */
    private get sizes(): number[] {
        const sizes: number[] = [];
        for (const island of this.mesh?.islands ?? []) sizes[island] = (sizes[island] ?? 0) + 1;
        return sizes;
    }

    private showIslands(): void {
        const { sizes } = this;
        element("islandsBox").hidden = sizes.length < 2;
        element("islands").replaceChildren(
            ...sizes.slice(0, mostListed).map((size, island) => {
                const label = document.createElement("label");
                const box = document.createElement("input");
                box.type = "checkbox";
                box.checked = !this.hidden.has(island);
                box.addEventListener("change", () => {
                    if (box.checked) this.hidden.delete(island);
                    else this.hidden.add(island);
                    this.apply();
                });
                label.append(box, ` Island ${island}: ${size} node${size === 1 ? "" : "s"}`);
                return label;
            }),
        );
    }
}
