import { chromium } from "playwright-core";

/** A browser that draws without a graphics card. */
export function launch() {
    return chromium.launch({
        executablePath: "/usr/bin/chromium",
        args: [
            "--headless",
            "--no-sandbox",
            "--no-first-run",
            "--disable-quic",
            "--disable-background-networking",
            "--disable-component-update",
            "--disable-sync",
            "--disable-gpu",
        ],
    });
}
