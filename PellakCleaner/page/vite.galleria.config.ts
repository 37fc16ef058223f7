import { defineConfig, mergeConfig } from "vite";
import { unicoFile } from "./build/unicoFile";
import pagina from "./vite.config";

/** The gallery of the parts as one file, built like the page, around another script. */
export default mergeConfig(
  {
    ...pagina,
    plugins: [
      {
        name: "pellak-galleria",
        transformIndexHtml: {
          order: "pre",
          handler: (html: string) => html.replace("/src/main.tsx", "/tests/galleria/Galleria.tsx"),
        },
      },
      unicoFile("galleria.html"),
    ],
  },
  defineConfig({ build: { outDir: "dist" } }),
);
