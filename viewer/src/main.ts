import { element } from "./panel";
import { Workbench } from "./workbench";

if (document.createElement("canvas").getContext("webgl2")) {
    const workbench = new Workbench();
    void workbench.address.follow();
    addEventListener("hashchange", () => void workbench.address.follow());
    // for scripts that work the page
    Object.assign(window, { workbench });
} else {
    element("noWebGL").hidden = false;
}
