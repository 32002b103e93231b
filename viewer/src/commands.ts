import { Actions, bindButtons, bindFiles, bindKeys, keepClear } from "./controls";
import { element, showTab } from "./panel";
import type { Tool } from "./queries";
import type { StraightForm } from "./searches";
import type { Workbench } from "./workbench";

const panStep = 60; // pixels
const zoomStep = 1.25;

/** Connects buttons, keys and files with what the workbench does. */
export function connectControls(bench: Workbench): void {
    const shown = (action: () => void) => () => {
        action();
        bench.showAll();
    };
    const withShow = (all: Actions) => Object.fromEntries(Object.entries(all).map(([name, action]) => [name, shown(action)]));
    const queries = () => bench.running?.queries;
    const { eye } = bench.view;

    const actions: Actions = {
        open: () => element("file").click(),
        fit: () => eye.fit(),
        top: () => eye.setTopView(!eye.isTopView),
        labels: () => bench.setLabels(!bench.showsLabels),
        grid: () => bench.setGrid(!bench.showsGrid),
        scenery: () => bench.toggleScene(),
        picture: () => void bench.savePicture(),
        script: () => bench.saveScript(),
        link: () => void navigator.clipboard?.writeText(location.href),
        theme: () => bench.setTheme(!bench.isDark),
        help: () => element<HTMLDialogElement>("keys").showModal(),
        play: () => queries()?.togglePlay(),
        step: () => queries()?.step(bench.movement.budget),
        finish: () => queries()?.finish(),
        restart: () => queries()?.restart(),
        another: () => {
            const all = queries();
            if (all) all.addsNext = !all.addsNext;
        },
        twenty: () => queries()?.addTwenty(),
        clear: () => queries()?.clear(),
        undo: () => queries()?.undo(),
        clearRay: () => queries()?.clearRay(),
        useNearest: () => bench.placing.useNearest(),
        walk: () => bench.movement.walk(),
        crowdWalk: () => bench.movement.walkCrowd(),
        crowdEnd: () => bench.running?.crowd.end(),
        errorClose: () => bench.hideError(),
    };
    bindButtons(withShow(actions));

    const keys: Actions = {
        s: () => bench.setTool("path"),
        r: () => bench.setTool("ray"),
        v: () => bench.setTool("look"),
        f: actions.fit,
        t: actions.top,
        l: actions.labels,
        g: actions.grid,
        o: actions.scenery,
        p: actions.picture,
        q: actions.script,
        d: actions.theme,
        n: actions.step,
        w: actions.walk,
        x: () => bench.floors.toggleAbove(bench.lastPoint),
        a: () => bench.placing.setInMiddle("start"),
        b: () => bench.placing.setInMiddle("goal"),
        " ": actions.play,
        Enter: actions.finish,
        Escape: () => bench.escape(),
        Delete: () => bench.closeActive(),
        "Ctrl+z": actions.undo,
        "?": actions.help,
        ArrowLeft: () => bench.moveView(-panStep, 0),
        ArrowRight: () => bench.moveView(panStep, 0),
        ArrowUp: () => bench.moveView(0, panStep),
        ArrowDown: () => bench.moveView(0, -panStep),
        "+": () => eye.approach(zoomStep),
        "-": () => eye.approach(1 / zoomStep),
    };
    bindKeys(withShow(keys));

    const onChange = (id: string, kind: "input" | "change", action: () => void) => element(id).addEventListener(kind, shown(action));
    for (const button of document.querySelectorAll<HTMLElement>("[data-tool]"))
        button.addEventListener("click", shown(() => bench.setTool(button.dataset.tool as Tool)));
    for (const tab of document.querySelectorAll<HTMLElement>("[data-tab]")) tab.addEventListener("click", () => showTab(tab.dataset.tab!));
    for (const id of ["budget", "crowdBudget", "speed"]) onChange(id, "input", () => bench.movement.showSliders());
    onChange("form", "change", () => (bench.form = element<HTMLSelectElement>("form").value as StraightForm));
    onChange("fromPoint", "change", () => bench.placing.type("start", element<HTMLInputElement>("fromPoint")));
    onChange("toPoint", "change", () => bench.placing.type("goal", element<HTMLInputElement>("toPoint")));
    element("sample").addEventListener("change", () => {
        const name = element<HTMLSelectElement>("sample").value;
        if (name) void bench.opener.openSample(name);
    });
    bindFiles((files) => void bench.opener.openFiles(files));
    keepClear(element("stage"), [element("legend"), element("hint"), element("note")]);
}
