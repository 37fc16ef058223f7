import { render } from "preact";
import { act } from "preact/test-utils";
import { expect, test } from "vitest";
import { BarraLaterale } from "../../src/components/BarraLaterale";
import { sezioni, vista } from "../../src/store";
import { dalMenu } from "../../src/tasti";
import { sezione } from "./esempi";

test("a section that can't be scanned has no part in the queue", () => {
  const inCoda = { queued: true, scanned: false };
  sezioni.value = [
    sezione("privacy", [], { ...inCoda, scandibile: false }),
    sezione("avvio", [], inCoda),
  ];
  render(<BarraLaterale />, document.body);
  const testo = (id: string) => document.querySelector(`[data-vista="${id}"]`)?.textContent;
  expect([testo("privacy"), testo("avvio")]).toEqual(["Privacy", "App di avvioin coda"]);
});

test("arrows open the next view; a folded group keeps the one on screen and can be opened", () => {
  render(<BarraLaterale />, document.body);
  const attivo = () => document.activeElement as HTMLElement;
  const premi = (key: string) =>
    act(() => {
      attivo().dispatchEvent(new KeyboardEvent("keydown", { key, bubbles: true }));
    });
  const mostrate = () =>
    [...document.querySelectorAll<HTMLElement>('[data-gruppo="pulizia"] [data-vista]')].map(
      (v) => v.dataset.vista,
    );
  act(() => dalMenu("vista", 1));
  document.querySelector<HTMLElement>('[data-vista="sviluppo"]')?.focus();
  void premi("ArrowDown");
  expect([vista.value, attivo().dataset.vista]).toEqual(["applicazioni", "applicazioni"]);
  void premi("ArrowLeft");
  expect(mostrate()).toEqual(["applicazioni"]);
  void premi("ArrowDown");
  expect(vista.value).toBe("mappa");
  void premi("ArrowUp");
  expect(attivo().getAttribute("aria-expanded")).toBe("false");
  expect(vista.value, "a title opens nothing").toBe("mappa");
  void premi("ArrowRight");
  expect(mostrate()).toHaveLength(8);
  act(() => dalMenu("impostazioni"));
  expect(vista.value).toBe("impostazioni");
});
