<?php
// Installs WordPress if needed and fills it with exactly N posts spread over
// C categories, and nothing else: no sample post, page or comment. Run by
// bench/real-site.sh with WORDPRESS_CONFIG and HTTP_HOST set; does nothing
// when the site already holds what is asked for.
//   php bench/real-site-fill.php POSTS CATEGORIES

$posts = intval($argv[1] ?? 200);
$categories = max(1, intval($argv[2] ?? 5));
$_SERVER['WORDPRESS_CONFIG'] = getenv('WORDPRESS_CONFIG');
$_SERVER['HTTP_HOST'] = getenv('HTTP_HOST');
$_SERVER['REQUEST_URI'] = '/';
define('WP_INSTALLING', true);
// No mail server here; the install's notice has nowhere to go.
function wp_mail() { return true; }
require '/usr/share/wordpress/wp-load.php';
require_once ABSPATH . 'wp-admin/includes/upgrade.php';

$wanted = "posts=$posts categories=$categories theme=twentytwentyone";
if (is_blog_installed() && get_option('orvbench_content') === $wanted) exit(0);

if (!is_blog_installed()) {
  wp_install('OrvWebPage bench', 'admin', 'admin@bench.invalid', false, '',
             wp_generate_password(24));
}
switch_theme('twentytwentyone');
update_option('permalink_structure', '');
update_option('posts_per_page', 10);

// Start from nothing: every post, page, comment and category but the default.
foreach (get_posts(['post_type' => 'any', 'post_status' => 'any', 'numberposts' => -1,
                    'fields' => 'ids']) as $id) {
  wp_delete_post($id, true);
}
foreach (get_terms(['taxonomy' => 'category', 'hide_empty' => false]) as $term) {
  if ($term->term_id != get_option('default_category')) wp_delete_term($term->term_id, 'category');
}

$ids = [];
for ($c = 1; $c <= $categories; $c++) {
  $ids[] = wp_insert_term("Topic $c", 'category')['term_id'];
}
$words = explode(' ', 'lorem ipsum dolor sit amet consectetur adipiscing elit sed do eiusmod ' .
                      'tempor incididunt ut labore et dolore magna aliqua enim ad minim veniam');
mt_srand(15);
for ($p = 1; $p <= $posts; $p++) {
  $paragraphs = [];
  for ($k = 0; $k < 4; $k++) {
    $text = [];
    for ($w = 0; $w < 40; $w++) $text[] = $words[mt_rand(0, count($words) - 1)];
    $paragraphs[] = '<p>' . ucfirst(implode(' ', $text)) . '.</p>';
  }
  wp_insert_post([
    'post_title' => "Post $p",
    'post_content' => implode("\n", $paragraphs),
    'post_status' => 'publish',
    'post_date' => date('Y-m-d H:i:s', strtotime('2024-01-01') + $p * 86400),
    'post_category' => [$ids[($p - 1) % $categories]],
  ]);
}
update_option('orvbench_content', $wanted);
