/* Writes a CMYK JPEG that ImageMagick cannot (it stores CMYK as YCCK): the CMYK bytes are
 * compressed as they are, with or without Adobe's marker. Built and run by make.py.
 * Usage: cmyk_writer WIDTH HEIGHT RAW_CMYK OUT.jpg ADOBE(0|1) */
#include <stdio.h>
#include <stdlib.h>
#include <jpeglib.h>

int main(int argc, char** argv) {
  if (argc != 6) return 2;
  int w = atoi(argv[1]), h = atoi(argv[2]);
  unsigned char* raw = malloc((size_t)w * h * 4);
  FILE* in = fopen(argv[3], "rb");
  if (!raw || !in || fread(raw, 4, (size_t)w * h, in) != (size_t)w * h) return 1;
  fclose(in);
  FILE* out = fopen(argv[4], "wb");
  if (!out) return 1;
  struct jpeg_compress_struct c;
  struct jpeg_error_mgr e;
  c.err = jpeg_std_error(&e);
  jpeg_create_compress(&c);
  jpeg_stdio_dest(&c, out);
  c.image_width = w;
  c.image_height = h;
  c.input_components = 4;
  c.in_color_space = JCS_CMYK;
  jpeg_set_defaults(&c);
  jpeg_set_colorspace(&c, JCS_CMYK);
  c.write_Adobe_marker = atoi(argv[5]) ? TRUE : FALSE;
  jpeg_set_quality(&c, 95, TRUE);
  jpeg_start_compress(&c, TRUE);
  while (c.next_scanline < c.image_height) {
    JSAMPROW row = raw + (size_t)c.next_scanline * w * 4;
    jpeg_write_scanlines(&c, &row, 1);
  }
  jpeg_finish_compress(&c);
  jpeg_destroy_compress(&c);
  fclose(out);
  free(raw);
  return 0;
}
