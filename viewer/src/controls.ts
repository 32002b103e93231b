import { element } from "./panel";

export type Actions = Record<string, () => void>;

/** Gives the buttons of these ids their actions. */
export function bindButtons(actions: Actions): void {
    for (const [id, action] of Object.entries(actions))
        element(id).addEventListener("click", (event) => {
            action();
            // Enter and Space go to the picture again, not to the button that the mouse pressed
            if (event.detail > 0 && id !== "help") element("scene").focus();
        });
}

/** What a control that has the focus does with a key itself. */
function isForControl(target: EventTarget | null, key: string): boolean {
    if (!(target instanceof HTMLElement)) return false;
    if (target.matches("select, textarea, input:not([type=range], [type=checkbox])")) return key !== "Escape";
    if (target.matches("input[type=range]")) return key.startsWith("Arrow") || key === "Home" || key === "End";
    return target.matches("input, button, summary") && (key === " " || key === "Enter");
}

/** Gives keys their actions, where nobody types and no dialog is open. */
export function bindKeys(actions: Actions): void {
    document.addEventListener("keydown", (event) => {
        const { key } = event;
        const name = (event.ctrlKey || event.metaKey ? "Ctrl+" : "") + (key.length === 1 ? key.toLowerCase() : key);
        const action = actions[name];
        if (!action || event.altKey || document.querySelector("dialog[open]") || isForControl(event.target, key)) return;
        event.preventDefault();
        action();
    });
}

/** Keeps what lies over the picture away from the pointer. */
export function keepClear(stage: HTMLElement, covers: HTMLElement[]): void {
    const margin = 14; // pixels
    const look = (event: PointerEvent) => {
        for (const cover of covers) {
            const { left, right, top, bottom } = cover.getBoundingClientRect();
            const isNear = event.type !== "pointerleave" &&
                event.clientX > left - margin && event.clientX < right + margin &&
                event.clientY > top - margin && event.clientY < bottom + margin;
            cover.classList.toggle("aside", isNear);
        }
    };
    for (const kind of ["pointermove", "pointerdown", "pointerleave"] as const) stage.addEventListener(kind, look);
}

/** Takes files: by the file button, or dropped anywhere; several at once, too. */
export function bindFiles(open: (files: File[]) => void): void {
    const input = element<HTMLInputElement>("file");
    input.addEventListener("change", () => {
        if (input.files?.length) open([...input.files]);
        input.value = "";
    });
    const dropHere = element("dropHere");
    addEventListener("dragover", (event) => {
        event.preventDefault();
        dropHere.hidden = false;
    });
    addEventListener("dragleave", (event) => {
        if (!event.relatedTarget) dropHere.hidden = true;
    });
    addEventListener("drop", (event) => {
        event.preventDefault();
        dropHere.hidden = true;
        const files = [...(event.dataTransfer?.files ?? [])];
        if (files.length) open(files);
    });
}
