import { AppWindow } from "lucide-preact";

/** The icon of an application; only pictures that the native side drew are shown. */
export function Icona({ dati }: { dati: string }) {
  if (!dati.startsWith("data:image/png;base64,")) {
    return <AppWindow size={24} strokeWidth={1.5} aria-hidden="true" class="icona-app" />;
  }
  return <img class="icona-app" src={dati} width={24} height={24} alt="" />;
}
