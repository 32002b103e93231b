import { element } from "./panel";
import { Workbench } from "./workbench";

if (document.createElement("canvas").getContext("webgl2")) {
    const workbench = new Workbench();
    void workbench.followAddress();
    addEventListener("hashchange", () => void workbench.followAddress());
    // for scripts that work the page
    Object.assign(window, { workbench });
} else {
    element("noWebGL").hidden = false;
}
