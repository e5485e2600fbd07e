<?php
// Installs WordPress if needed and fills it with exactly N posts spread over
// C categories, each post with two of T tags, and nothing else: no sample
// post, page or comment, comments closed. PERMALINK is WordPress's permalink
// structure ("" for /?p=N), HOME "full" or "excerpt" for what the home page
// shows of each post. Run by bench/real-site.sh with WORDPRESS_CONFIG and
// HTTP_HOST set; does nothing when the site already holds what is asked for.
//   php bench/real-site-fill.php POSTS CATEGORIES [TAGS [PERMALINK [HOME]]]

$posts = intval($argv[1] ?? 200);
$categories = max(1, intval($argv[2] ?? 5));
$tags = intval($argv[3] ?? 0);
$permalink = $argv[4] ?? '';
$home = ($argv[5] ?? 'full') === 'excerpt' ? 'excerpt' : 'full';
$_SERVER['WORDPRESS_CONFIG'] = getenv('WORDPRESS_CONFIG');
$_SERVER['HTTP_HOST'] = getenv('HTTP_HOST');
$_SERVER['REQUEST_URI'] = '/';
define('WP_INSTALLING', true);
// No mail server here; the install's notice has nowhere to go.
function wp_mail() { return true; }
require '/usr/share/wordpress/wp-load.php';
require_once ABSPATH . 'wp-admin/includes/upgrade.php';

$wanted = "posts=$posts categories=$categories tags=$tags permalink=$permalink home=$home " .
          "theme=twentytwentyone comments=closed public=1";
if (is_blog_installed() && get_option('orvbench_content') === $wanted) exit(0);

if (!is_blog_installed()) {
  wp_install('OrvWebPage bench', 'admin', 'admin@bench.invalid', false, '',
             wp_generate_password(24));
}
switch_theme('twentytwentyone');
update_option('permalink_structure', $permalink);
update_option('posts_per_page', 10);
// Public, so that robots.txt allows the site and names its sitemap.
update_option('blog_public', 1);
update_option('default_comment_status', 'closed');
update_option('default_ping_status', 'closed');
set_theme_mod('display_excerpt_or_full_post', $home);

// Start from nothing: every post, page, comment and category but the default.
foreach (get_posts(['post_type' => 'any', 'post_status' => 'any', 'numberposts' => -1,
                    'fields' => 'ids']) as $id) {
  wp_delete_post($id, true);
}
foreach (get_terms(['taxonomy' => ['category', 'post_tag'], 'hide_empty' => false]) as $term) {
  if ($term->term_id != get_option('default_category')) wp_delete_term($term->term_id, $term->taxonomy);
}

$ids = [];
for ($c = 1; $c <= $categories; $c++) {
  $ids[] = wp_insert_term("Topic $c", 'category')['term_id'];
}
$words = explode(' ', 'lorem ipsum dolor sit amet consectetur adipiscing elit sed do eiusmod ' .
                      'tempor incididunt ut labore et dolore magna aliqua enim ad minim veniam');
$tagNames = [];
for ($t = 1; $t <= $tags; $t++) $tagNames[] = sprintf('label-%02d', $t);
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
    'tags_input' => $tags > 1 ? [$tagNames[$p % $tags], $tagNames[($p * 7 + 3) % $tags]] : [],
    'comment_status' => 'closed',
    'ping_status' => 'closed',
  ]);
}
flush_rewrite_rules(false);
update_option('orvbench_content', $wanted);
