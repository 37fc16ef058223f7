import { render } from "preact";
import { act } from "preact/test-utils";
import { expect, test } from "vitest";
import { Dialogo } from "../../src/components/Dialogo";
import { conferma } from "../../src/dialogo";

// The engine of these tests has no modal dialogs.
test("without modal dialogs the question keeps the keys, and Esc dismisses it", async () => {
  document.body.innerHTML = '<input id="prima" /><div id="qui"></div>';
  document.getElementById("prima")?.focus();
  const qui = document.getElementById("qui") as HTMLElement;
  act(() => render(<Dialogo />, qui));
  let risposta: Promise<boolean> | undefined;
  act(() => void (risposta = conferma({ titolo: "Sposto?", righe: [], conferma: "Sì" })));
  const premi = (key: string, shiftKey = false) => {
    const evento = new KeyboardEvent("keydown", { key, shiftKey, bubbles: true, cancelable: true });
    act(() => void document.body.dispatchEvent(evento));
    return document.activeElement?.textContent;
  };
  const finestra = qui.querySelector("dialog");
  expect(finestra?.open && finestra.getAttribute("aria-modal")).toBe("true");
  expect(qui.querySelector(".dialogo-velo")).not.toBeNull();
  expect(document.activeElement?.textContent).toBe("Sì");
  expect([premi("Tab"), premi("Tab"), premi("Tab", true)]).toEqual(["Annulla", "Sì", "Annulla"]);
  premi("Escape");
  expect(await risposta).toBe(false);
  expect(qui.querySelector("dialog")).toBeNull();
  expect(document.activeElement?.id).toBe("prima");
});
