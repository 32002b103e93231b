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

/** Gives keys their actions, where nobody types. */
export function bindKeys(actions: Actions): void {
    document.addEventListener("keydown", (event) => {
        const action = actions[event.key.length === 1 ? event.key.toLowerCase() : event.key];
        if (!action || event.ctrlKey || event.metaKey || event.altKey) return;
        const isOnControl = event.target instanceof HTMLElement && event.target.matches("input, select, dialog *, button");
        if (isOnControl && (event.key === " " || event.key === "Enter")) return;
        event.preventDefault();
        action();
    });
}

/** Takes files: by the file button, or dropped anywhere. */
export function bindFiles(open: (file: File) => void): void {
    const input = element<HTMLInputElement>("file");
    input.addEventListener("change", () => {
        if (input.files?.[0]) open(input.files[0]);
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
        const file = event.dataTransfer?.files[0];
        if (file) open(file);
    });
}
