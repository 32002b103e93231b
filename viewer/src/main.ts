import { Workbench } from "./workbench";

const workbench = new Workbench();
void workbench.followAddress();
addEventListener("hashchange", () => void workbench.followAddress());
// for scripts that work the page
Object.assign(window, { workbench });